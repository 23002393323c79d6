// HTTP on libcurl's easy interface: https only, certificate and host name verified (libcurl's
// default), no redirects, no proxy, a new connection for each request.

#include <curl/curl.h>

#include <algorithm>
#include <exception>
#include <memory>

#include <orvane/utilities/HttpRequestRunner.h>
#include <orvane/utilities/Str.h>

#include "Firmware.h"

namespace firmware {

struct Request {
  std::string method;
  std::string url;
  std::string body;
  bool hasBody = false;
  std::vector<std::string> headerLines;  // "Name: value", in the order they are sent
};

}  // namespace firmware

struct orvane::utilities::HttpRequest::Data : firmware::Request {};

namespace orvane {
namespace utilities {

// --- HttpRequest ---------------------------------------------------------------------------------

HttpRequest::HttpRequest(const std::string& method, const std::string& url) : data(new Data) {
  data->method = method;
  data->url = url;
}

HttpRequest::~HttpRequest() = default;

void HttpRequest::AddPostData(const std::string& body) {
  data->body = body;
  data->hasBody = true;
}

void HttpRequest::AddHeader(const std::string& name, const std::string& value) {
  // libcurl removes a header that is given as "Name:"; "Name;" sends an empty header.
  data->headerLines.push_back(value.empty() ? name + ";" : name + ": " + value);
}

namespace {

std::string shellWord(const std::string& text) {
  std::string word = " '";
  for (const char byte : text) {
    word += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
  }
  return word + "'";
}

}  // namespace

std::string HttpRequest::toCurlRequest() const {
  std::string command = "curl -X" + shellWord(data->method) + shellWord(data->url);
  for (const std::string& line : data->headerLines) {
    command += " -H" + shellWord(line);
  }
  return data->hasBody ? command + " --data-raw" + shellWord(data->body) : command;
}

// --- HttpRequestRunner ---------------------------------------------------------------------------

namespace {

using Headers = std::unordered_map<std::string, std::string>;

const long kConnectSeconds = 10;
const long kStallSeconds = 30;
const unsigned int kMostSeconds = 86400;
const std::uint64_t kMostAnswerBytes = 16u << 20;

// One exchange. An exception from a callback must not pass through libcurl; `thrown_` keeps it.
class Transfer {
 public:
  Transfer(const firmware::Request& request, HttpRequestRunner::WriteCallback write,
           HttpRequestRunner::ProgressCallback progress)
      : request_(request), write_(std::move(write)), progress_(std::move(progress)) {}
  ~Transfer() {
    curl_easy_cleanup(curl_);
    curl_slist_free_all(headerLines_);
    curl_slist_free_all(route_);
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // `limitSeconds` 0 means no limit.
  int perform(unsigned int limitSeconds, long* status);

  Headers headers() const;

 private:
  template <typename Option>
  void set(CURLoption name, Option value) {
    curl_easy_setopt(curl_, name, value);
  }
  bool setHeaders();
  void setTransport(unsigned int limitSeconds);
  static std::size_t onWrite(char* data, std::size_t size, std::size_t count, void* transfer);
  static int onProgress(void* transfer, curl_off_t total, curl_off_t received, curl_off_t,
                        curl_off_t);

  const firmware::Request& request_;
  const HttpRequestRunner::WriteCallback write_;
  const HttpRequestRunner::ProgressCallback progress_;
  CURL* const curl_ = curl_easy_init();
  curl_slist* headerLines_ = nullptr;
  curl_slist* route_ = nullptr;
  std::uint64_t received_ = 0;
  std::exception_ptr thrown_;
};

int Transfer::perform(unsigned int limitSeconds, long* status) {
  CURLcode result = CURLE_FAILED_INIT;
  if (curl_ != nullptr && setHeaders()) {
    set(CURLOPT_URL, request_.url.c_str());
    if (request_.hasBody) {
      set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
      set(CURLOPT_POSTFIELDS, request_.body.c_str());
    }
    set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
    setTransport(limitSeconds);
    set(CURLOPT_WRITEFUNCTION, &Transfer::onWrite);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &Transfer::onProgress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    result = curl_easy_perform(curl_);
    curl_easy_getinfo(curl_, CURLINFO_RESPONSE_CODE, status);
    *status = *status < 200 ? 0 : *status;  // 1xx statuses only precede the response
  }
  if (thrown_) {
    std::rethrow_exception(thrown_);
  }
  if (result != CURLE_OK) {  // without the URL, which may contain secrets
    ov_print_log2(2, __FILE__, __LINE__, __func__, "%s", curl_easy_strerror(result));
  }
  return result;
}

// False when a value contains a line end: a text from a server must not become another header.
bool Transfer::setHeaders() {
  headerLines_ = curl_slist_append(nullptr, "Expect:");  // no round trip before the body
  for (const std::string& line : request_.headerLines) {
    if (line.find_first_of("\r\n") != std::string::npos ||
        curl_slist_append(headerLines_, line.c_str()) == nullptr) {
      return false;
    }
  }
  set(CURLOPT_HTTPHEADER, headerLines_);
  return true;
}

void Transfer::setTransport(unsigned int limitSeconds) {
  set(CURLOPT_PROTOCOLS_STR, "https");
  set(CURLOPT_PROXY, "");
  set(CURLOPT_ACCEPT_ENCODING, "");  // all that libcurl can decode
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  if (limitSeconds > 0) {
    set(CURLOPT_TIMEOUT, static_cast<long>(std::min(limitSeconds, kMostSeconds)));
  } else {
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, kStallSeconds);
  }
  if (!firmware::deviceSetting("caFile").empty()) {
    set(CURLOPT_CAINFO, firmware::deviceSetting("caFile").c_str());
  }
  if (!firmware::deviceSetting("connectTo").empty()) {
    route_ = curl_slist_append(nullptr, firmware::deviceSetting("connectTo").c_str());
    set(CURLOPT_CONNECT_TO, route_);
  }
}

std::size_t Transfer::onWrite(char* data, std::size_t size, std::size_t count, void* transfer) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  const std::size_t length = size * count;
  const std::size_t kStop = 0;
  self.received_ += length;
  try {
    const bool isTaken =
        self.received_ <= kMostAnswerBytes && (!self.write_ || self.write_(length, data) == length);
    return isTaken ? length : kStop;
  } catch (...) {
    self.thrown_ = std::current_exception();
    return kStop;
  }
}

int Transfer::onProgress(void* transfer, curl_off_t total, curl_off_t received, curl_off_t,
                         curl_off_t) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  try {
    const bool goesOn = !self.progress_ || self.progress_(static_cast<std::uint64_t>(received),
                                                          static_cast<std::uint64_t>(total));
    return goesOn ? 0 : 1;
  } catch (...) {
    self.thrown_ = std::current_exception();
    return 1;
  }
}

// Names in lower case, as the library looks for them.
Headers Transfer::headers() const {
  const int kFinalAnswer = -1;
  Headers result;
  curl_header* header = nullptr;
  while ((header = curl_easy_nextheader(curl_, CURLH_HEADER, kFinalAnswer, header)) != nullptr) {
    std::string name = header->name;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    result.emplace(name, Str::trim(header->value));
  }
  return result;
}

}  // namespace

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status,
                                      std::vector<char>* body, unsigned int limit) {
  *status = 0;
  body->clear();
  const auto keep = [body](std::size_t length, const char* data) {
    body->insert(body->end(), data, data + length);
    return length;
  };
  const int result = Transfer(*request.data, keep, {}).perform(limit, status);
  if (result != 0) {
    body->clear();  // a truncated response must not be used
  }
  return result;
}

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status, Headers* headers,
                                      ReadCallback read, WriteCallback write,
                                      ProgressCallback progress) {
  const unsigned int kNoLimit = 0;
  *status = 0;
  firmware::Request withBody = *request.data;
  if (read) {
    withBody.body.clear();
    withBody.hasBody = true;
    char piece[4096];
    while (const std::size_t length = read(sizeof piece, piece)) {
      withBody.body.append(piece, std::min(length, sizeof piece));
    }
  }
  Transfer transfer(withBody, std::move(write), std::move(progress));
  const int result = transfer.perform(kNoLimit, status);
  *headers = result == 0 ? transfer.headers() : Headers();
  return result;
}

}  // namespace utilities
}  // namespace orvane
