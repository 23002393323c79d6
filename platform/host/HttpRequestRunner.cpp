#include <orvane/utilities/HttpRequestRunner.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "base/DryRun.h"
#include "platform/host/HttpRequestData.h"
#include "platform/host/HttpTransfer.h"

namespace orvane {
namespace utilities {

namespace {

void endHereInDryRun(const HttpRequest& request) {
  if (base::isDryRun()) {
    throw base::DryRun(request.toCurlRequest());
  }
}

// Reads the whole body before sending. A kept connection may turn out to be closed; libcurl then
// sends the body a second time, but the callback cannot supply it again.
host::HttpRequestData withBody(host::HttpRequestData request,
                               const HttpRequestRunner::ReadCallback& read) {
  std::array<char, 16384> piece;
  request.body.clear();
  request.hasBody = true;
  while (const std::size_t length = read(piece.size(), piece.data())) {
    if (length > piece.size()) {
      throw std::length_error("the read callback returned more bytes than requested");
    }
    request.body.append(piece.data(), length);
  }
  return request;
}

}  // namespace

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status,
                                      std::vector<char>* body, unsigned int limit) {
  *status = 0;
  body->clear();
  endHereInDryRun(request);
  const auto keep = [body](std::size_t length, const char* data) {
    body->insert(body->end(), data, data + length);
    return length;
  };
  host::HttpTransfer transfer(*request.data, limit, keep, {});
  const int result = transfer.perform();
  *status = transfer.status();
  if (result != 0) {
    body->clear();  // a truncated response must not be used
  }
  return result;
}

int HttpRequestRunner::PerformRequest(
    const HttpRequest& request, long* status, std::unordered_map<std::string, std::string>* headers,
    ReadCallback read,  // NOLINT(*-value-param): the platform's signature
    WriteCallback write, ProgressCallback progress) {
  const unsigned int kNoLimit = 0;
  *status = 0;
  endHereInDryRun(request);
  const host::HttpRequestData readRequest =
      read ? withBody(*request.data, read) : host::HttpRequestData();
  host::HttpTransfer transfer(read ? readRequest : *request.data, kNoLimit, std::move(write),
                              std::move(progress));
  const int result = transfer.perform();
  *status = transfer.status();
  *headers = transfer.headers();
  return result;
}

}  // namespace utilities
}  // namespace orvane
