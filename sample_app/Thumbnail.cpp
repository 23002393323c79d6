#include "sample_app/Thumbnail.h"

#include <strings.h>

#include <chrono>
#include <cstdint>
#include <unordered_map>

#include <orvane/utilities/HttpRequest.h>
#include <orvane/utilities/HttpRequestRunner.h>

#include "base/HttpResult.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;

namespace sample_app {

namespace {

constexpr std::chrono::seconds kLongestTransfer(30);

Thumbnail none(const std::string& problem) {
  Thumbnail thumbnail;
  thumbnail.problem = problem;
  return thumbnail;
}

bool isHttps(const std::string& url) {
  const std::string scheme = "https://";
  return ::strncasecmp(url.c_str(), scheme.c_str(), scheme.size()) == 0;
}

bool holdsAt(const std::string& bytes, std::size_t position, const std::string& text) {
  return bytes.size() >= position && bytes.compare(position, text.size(), text) == 0;
}

// Empty if the bytes are not a picture.
std::string extensionOf(const std::string& bytes) {
  if (holdsAt(bytes, 0, "\x89PNG\r\n\x1a\n")) {
    return "png";
  }
  if (holdsAt(bytes, 0, "\xff\xd8\xff")) {
    return "jpg";
  }
  if (holdsAt(bytes, 0, "GIF87a") || holdsAt(bytes, 0, "GIF89a")) {
    return "gif";
  }
  return holdsAt(bytes, 0, "RIFF") && holdsAt(bytes, 8, "WEBP") ? "webp" : "";
}

struct Transfer {
  int result = 0;
  long status = 0;
  bool isTooLarge = false;
  std::string bytes;
};

Transfer transfer(const std::string& url) {
  const HttpRequest request("GET", url);
  Transfer done;
  std::unordered_map<std::string, std::string> headers;
  const auto keep = [&done](std::size_t length, const char* data) -> std::size_t {
    done.isTooLarge = done.bytes.size() + length > kLargestThumbnail;
    if (done.isTooLarge) {
      return 0;
    }
    done.bytes.append(data, length);
    return length;
  };
  // This overload of PerformRequest has no time limit, and the other one has no size limit.
  const auto end = std::chrono::steady_clock::now() + kLongestTransfer;
  const auto isInTime = [end](std::uint64_t, std::uint64_t) {
    return std::chrono::steady_clock::now() < end;
  };
  done.result =
      HttpRequestRunner().PerformRequest(request, &done.status, &headers, {}, keep, isInTime);
  return done;
}

}  // namespace

Thumbnail fetchThumbnail(const std::string& url) {
  if (url.empty()) {
    return none("the store names no picture");
  }
  if (!isHttps(url)) {
    return none("the address of the picture is not an https URL");
  }
  Transfer done = transfer(url);
  if (done.isTooLarge) {
    return none("the picture is larger than " + std::to_string(kLargestThumbnail) + " bytes");
  }
  if (done.result != 0) {
    return none("the request for the picture failed: " + std::to_string(done.result));
  }
  if (done.status != base::kHttpOk) {
    return none("the request for the picture returned HTTP status " + std::to_string(done.status));
  }
  Thumbnail thumbnail;
  thumbnail.extension = extensionOf(done.bytes);
  if (thumbnail.extension.empty()) {
    return none("the response is not a PNG, JPEG, GIF or WebP image");
  }
  thumbnail.bytes.swap(done.bytes);
  return thumbnail;
}

}  // namespace sample_app
