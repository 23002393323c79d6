// Faults of HTTP. Those of the transfer itself are played by changing the options of libcurl, with
// which the implementation under the faults works.

#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

#include <orvane/utilities/HttpRequestRunner.h>

#include "tests/platform_check/Fault.h"

using broken::isFault;
using broken::real;
using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;

namespace {

using Headers = std::unordered_map<std::string, std::string>;
using Read = HttpRequestRunner::ReadCallback;
using Write = HttpRequestRunner::WriteCallback;
using Progress = HttpRequestRunner::ProgressCallback;

using PerformForBody = int (HttpRequestRunner::*)(const HttpRequest&, long*, std::vector<char>*,
                                                  unsigned int);
using PerformForHeaders = int (HttpRequestRunner::*)(const HttpRequest&, long*, Headers*, Read,
                                                     Write, Progress);

int brokenResult(int result, long* status) {
  if (isFault("error-status-is-a-failure") && result == 0 && *status >= 400) {
    return 22;
  }
  if (isFault("part-is-a-response") && *status != 0) {
    return 0;
  }
  const int kMalformedUrl = 3;
  if (isFault("malformed-url-throws") && result == kMalformedUrl) {
    throw std::invalid_argument("malformed URL");
  }
  if (isFault("status-of-a-failure") && result != 0) {
    *status = 200;
  }
  return result;
}

Write brokenWrite(const Write& write) {
  if (isFault("empty-callback-called")) {
    return [write](std::size_t length, const char* data) { return write(length, data); };
  }
  if (write && isFault("refused-data-ignored")) {
    return [write](std::size_t length, const char* data) {
      write(length, data);
      return length;
    };
  }
  if (write && isFault("exception-swallowed")) {
    return [write](std::size_t length, const char* data) -> std::size_t {
      try {
        return write(length, data);
      } catch (...) {
        return 0;
      }
    };
  }
  return write;
}

}  // namespace

void HttpRequest::AddPostData(const std::string& body) {
  using Add = void (*)(HttpRequest*, const std::string&);
  real<Add> (&HttpRequest::AddPostData)(
      this, isFault("body-ends-at-nul") ? std::string(body.c_str()) : body);
}

void HttpRequest::AddHeader(const std::string& name, const std::string& value) {
  using Add = void (*)(HttpRequest*, const std::string&, const std::string&);
  const auto add = real<Add>(&HttpRequest::AddHeader);
  const std::size_t end = value.find('\n');
  const std::size_t colon = value.find(':');
  if (isFault("empty-header-dropped") && value.empty()) {
    return;
  }
  if (isFault("line-end-makes-a-header") && end != std::string::npos) {
    add(this, name, value.substr(0, value.find_first_of("\r\n")));
    add(this, value.substr(end + 1, colon - end - 1), value.substr(colon + 2));
    return;
  }
  add(this, name, isFault("header-value-ends-at-comma") ? value.substr(0, value.find(',')) : value);
}

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status,
                                      std::vector<char>* body, unsigned int limit) {
  using Perform =
      int (*)(HttpRequestRunner*, const HttpRequest&, long*, std::vector<char>*, unsigned int);
  const auto perform =
      real<Perform>(static_cast<PerformForBody>(&HttpRequestRunner::PerformRequest));
  const std::vector<char> before = *body;
  const int result = perform(this, request, status, body, isFault("limit-ignored") ? 3600 : limit);
  if (isFault("body-appended")) {
    body->insert(body->begin(), before.begin(), before.end());
  }
  return brokenResult(result, status);
}

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status, Headers* headers,
                                      Read read, Write write, Progress progress) {
  using Perform =
      int (*)(HttpRequestRunner*, const HttpRequest&, long*, Headers*, Read, Write, Progress);
  const auto perform =
      real<Perform>(static_cast<PerformForHeaders>(&HttpRequestRunner::PerformRequest));
  static std::atomic<int> running(0);
  if (isFault("one-request-at-a-time")) {
    if (running++ > 0) {
      return 7;
    }
    ::usleep(200000);
  }
  int result = 0;
  const auto run = [&] {
    result =
        perform(this, request, status, headers, isFault("read-callback-ignored") ? Read() : read,
                brokenWrite(write), isFault("progress-callback-ignored") ? Progress() : progress);
  };
  if (isFault("callback-on-another-thread")) {
    std::thread(run).join();
  } else {
    run();
  }
  if (isFault("header-names-not-lowered")) {
    Headers asSent;
    for (const auto& header : *headers) {
      std::string name = header.first;
      name[0] = static_cast<char>(name[0] - 'a' + 'A');
      asSent[name] = header.second;
    }
    *headers = asSent;
  }
  return brokenResult(result, status);
}

// --- libcurl, whose headers are not included: they define the function as a macro ----------------

namespace {

// Options of libcurl; the number tells the type of the value as well.
const int kTimeout = 13;
const int kLowSpeedLimit = 19;
const int kLowSpeedTime = 20;
const int kFollowLocation = 52;
const int kVerifyPeer = 64;
const int kVerifyHost = 81;
const int kUrl = 10002;
const int kAcceptEncoding = 10102;
const int kProtocols = 10318;
const int kFirstPointer = 10000;
const int kFirstOffset = 30000;
const int kFirstBlob = 40000;

using SetOption = int (*)(void*, int, ...);

void setBefore(void* handle, SetOption set) {
  if (isFault("redirects-followed")) {
    set(handle, kFollowLocation, 1L);
  }
  if (isFault("certificate-not-verified")) {
    set(handle, kVerifyPeer, 0L);
    set(handle, kVerifyHost, 0L);
  }
  if (isFault("host-name-not-verified")) {
    set(handle, kVerifyHost, 0L);
  }
}

}  // namespace

extern "C" int curl_easy_setopt(void* handle, int option, ...) {
  static const auto set = broken::realSymbol<SetOption>("curl_easy_setopt");
  va_list values;
  va_start(values, option);
  int result = 0;
  if (option == kUrl) {
    setBefore(handle, set);
  }
  if (option == kTimeout && isFault("limit-for-silence-only")) {
    set(handle, kLowSpeedLimit, 1L);
    result = set(handle, kLowSpeedTime, va_arg(values, long));
  } else if (option == kProtocols && isFault("plain-http-accepted")) {
    result = set(handle, option, "http,https");
  } else if (option == kAcceptEncoding && isFault("body-not-decompressed")) {
    result = 0;
  } else if (option >= kFirstOffset && option < kFirstBlob) {
    result = set(handle, option, va_arg(values, std::int64_t));
  } else if (option >= kFirstPointer) {
    result = set(handle, option, va_arg(values, void*));
  } else {
    result = set(handle, option, va_arg(values, long));
  }
  va_end(values);
  return result;
}
