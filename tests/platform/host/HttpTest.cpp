#include "tests/platform/host/HttpTest.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <ov_sdk.h>

namespace {

// Level and text of each line.
std::vector<std::pair<int, std::string>>& recordedLines() {
  static std::vector<std::pair<int, std::string>> lines;
  return lines;
}

}  // namespace

// Replaces the host's log in these programs.
extern "C" void ov_print_log2(int level, const char*, int, const char*, const char* format, ...) {
  std::array<char, 2000> text = {};
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(text.data(), text.size(), format, values);  // NOLINT(*-valist.Uninitialized)
  va_end(values);
  recordedLines().emplace_back(level, text.data());
}

HttpTest::HttpTest() {
  recordedLines().clear();
  set("ORVANE_CA_FILE", server_.certificateFile());
  connectTo(server_.http1Port());
}

void HttpTest::set(const std::string& name, const std::string& value) {
  settings_.set(name, value);
}

void HttpTest::connectTo(int port) {
  set("ORVANE_CONNECT_TO",
      std::string(support::HttpsServer::kHost) + ":443:127.0.0.1:" + std::to_string(port));
}

std::string HttpTest::url(const std::string& path) {
  return std::string("https://") + support::HttpsServer::kHost + path;
}

HttpTest::Answer HttpTest::perform(const HttpRequest& request, unsigned int limit) {
  std::vector<char> body = {'o', 'l', 'd'};
  Answer answer = {-1, -1, "", {}};
  answer.result = HttpRequestRunner().PerformRequest(request, &answer.status, &body, limit);
  answer.body.assign(body.begin(), body.end());
  return answer;
}

HttpTest::Answer HttpTest::get(const std::string& path, unsigned int limit) {
  return perform(HttpRequest("GET", url(path)), limit);
}

HttpTest::Answer HttpTest::post(const std::string& path, const std::string& body) {
  HttpRequest request("POST", url(path));
  request.AddPostData(body);
  return perform(request);
}

HttpTest::Answer HttpTest::getWithCallbacks(const std::string& path,
                                            HttpRequestRunner::WriteCallback write,
                                            HttpRequestRunner::ProgressCallback progress) {
  Answer answer = {-1, -1, "", {{"old", "old"}}};
  const auto keep = [&answer](std::size_t length, const char* data) {
    answer.body.append(data, length);
    return length;
  };
  answer.result = HttpRequestRunner().PerformRequest(
      HttpRequest("GET", url(path)), &answer.status, &answer.headers, {},
      write ? std::move(write) : HttpRequestRunner::WriteCallback(keep), std::move(progress));
  return answer;
}

std::string HttpTest::log() {
  std::string text;
  for (const auto& line : recordedLines()) {
    text += std::to_string(line.first) + " " + line.second + "\n";
  }
  return text;
}
