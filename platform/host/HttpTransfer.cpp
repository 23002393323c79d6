#include "platform/host/HttpTransfer.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>

#include <orvane/utilities/Str.h>
#include <ov_sdk.h>

#include "base/HttpResult.h"

using orvane::utilities::Str;

namespace host {

namespace {

// The failure of an exchange; result 0 means success.
struct Failure {
  int result;
  std::string reason;
};

bool isWord(const std::string& text) {
  static const char kWordCharacters[] =
      "!#$%&'*+-.^_`|~0123456789"
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  return !text.empty() && text.find_first_not_of(kWordCharacters) == std::string::npos;
}

bool holdsLineEnd(const std::string& text) {
  return text.find_first_of(std::string("\r\n\0", 3)) != std::string::npos;
}

// libcurl does not check these texts: a line end in one of them would start another header.
Failure findFault(const HttpRequestData& request) {
  if (!isWord(request.method)) {
    return {base::kMethodRefused, "the method must be one word"};
  }
  if (request.url.find('\0') != std::string::npos) {
    return {base::kUrlRefused, "the URL contains a NUL byte"};
  }
  for (const auto& header : request.headers) {
    if (!isWord(header.first)) {
      return {base::kHeaderRefused, "a header name must be one word: " + header.first};
    }
    if (holdsLineEnd(header.second)) {
      return {base::kHeaderRefused,
              "the value of header " + header.first + " contains CR, LF or NUL"};
    }
  }
  return {0, ""};
}

// `url` without the parts that may contain secrets: the query, the user name and the password.
std::string publicPart(const std::string& url) {
  struct Free {
    void operator()(CURLU* parsed) const { curl_url_cleanup(parsed); }
    void operator()(char* text) const { curl_free(text); }
  };
  const std::unique_ptr<CURLU, Free> parsed(curl_url());
  char* text = nullptr;
  if (curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME) !=
      CURLUE_OK) {
    return "(malformed URL)";
  }
  for (const CURLUPart part :
       {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_QUERY, CURLUPART_FRAGMENT}) {
    curl_url_set(parsed.get(), part, nullptr, 0);
  }
  curl_url_get(parsed.get(), CURLUPART_URL, &text, 0);
  const std::unique_ptr<char, Free> owned(text);
  return text == nullptr ? "" : text;
}

// The only place that converts libcurl's codes to the runner's results.
Failure failureOf(CURLcode code, const CurlHandle& curl, bool isTooLarge) {
  if (code == CURLE_OK) {
    return {0, ""};
  }
  if (isTooLarge) {
    return {base::kResponseTooLarge, "the response is larger than ORVANE_MAX_ANSWER_BYTES"};
  }
  return {code, curl.failureText(code)};
}

int report(const HttpRequestData& request, const Failure& failure) {
  if (failure.result != 0) {
    ov_print_log2(2, __FILE__, __LINE__, __PRETTY_FUNCTION__, "%s %s failed: %s (%d)",
                  request.method.c_str(), publicPart(request.url).c_str(), failure.reason.c_str(),
                  failure.result);
  }
  return failure.result;
}

void setBounds(CurlHandle& curl) {
  curl.set(CURLOPT_PROTOCOLS_STR, "https");
  curl.set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
  curl.set(CURLOPT_FOLLOWLOCATION, 0L);
  curl.set(CURLOPT_PROXY, "");  // unset, the proxy from the environment would be used
  curl.set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  curl.set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
}

void setTrust(CurlHandle& curl, const base::HttpSettings& settings) {
  curl.set(CURLOPT_SSL_VERIFYPEER, 1L);
  curl.set(CURLOPT_SSL_VERIFYHOST, 2L);
  curl.set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  // CA certificates from a file are parsed once per handle, not at each new connection. A CA folder
  // would turn that off.
  curl.set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  curl.set(CURLOPT_CA_CACHE_TIMEOUT, -1L);
  if (!settings.caFile.empty()) {
    curl.set(CURLOPT_CAINFO, settings.caFile.c_str());
  }
  if (!settings.pinnedKey.empty()) {
    curl.set(CURLOPT_PINNEDPUBLICKEY, settings.pinnedKey.c_str());
  }
}

void setTimes(CurlHandle& curl, const base::HttpSettings& settings, unsigned int limitSeconds) {
  const unsigned int most = INT_MAX / 1000;  // libcurl rejects larger values and then has no limit
  curl.set(CURLOPT_NOSIGNAL, 1L);
  curl.set(CURLOPT_QUICK_EXIT, 1L);  // otherwise a silent name server would exceed the limit
  curl.set(CURLOPT_CONNECTTIMEOUT, settings.connectTimeoutSeconds);
  if (limitSeconds != 0) {
    curl.set(CURLOPT_TIMEOUT, static_cast<long>(std::min(limitSeconds, most)));
  } else {
    curl.set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl.set(CURLOPT_LOW_SPEED_TIME, settings.stallTimeoutSeconds);
  }
}

std::string lowerCase(std::string text) {
  for (char& character : text) {  // tolower() would follow the locale
    if (character >= 'A' && character <= 'Z') {
      character = static_cast<char>(character - 'A' + 'a');
    }
  }
  return text;
}

}  // namespace

HttpTransfer::HttpTransfer(const HttpRequestData& request, unsigned int limitSeconds,
                           WriteCallback write, ProgressCallback progress)
    : request_(request),
      settings_(base::readHttpSettings()),
      limitSeconds_(limitSeconds),
      write_(std::move(write)),
      progress_(std::move(progress)) {}

int HttpTransfer::perform() {
  const Failure fault = findFault(request_);
  if (fault.result != 0) {
    return report(request_, fault);
  }
  setBounds(curl_);
  setTrust(curl_, settings_);
  setTimes(curl_, settings_, limitSeconds_);
  setRoute();
  setRequest();
  setCallbacks();
  const CURLcode code = curl_.perform();
  if (thrown_) {
    std::rethrow_exception(thrown_);
  }
  return report(request_, failureOf(code, curl_, bodyBytes_ > settings_.maxResponseBytes));
}

void HttpTransfer::setRoute() {
  curl_.set(CURLOPT_URL, request_.url.c_str());
  curl_.set(CURLOPT_HTTP_VERSION,
            static_cast<long>(settings_.http2 ? CURL_HTTP_VERSION_2TLS : CURL_HTTP_VERSION_1_1));
  for (const std::string& entry : settings_.connectTo) {
    connectTo_.append(entry);
  }
  curl_.set(CURLOPT_CONNECT_TO, connectTo_.get());
}

void HttpTransfer::setRequest() {
  if (request_.method == "HEAD") {
    curl_.set(CURLOPT_NOBODY, 1L);
  } else if (request_.hasBody) {
    curl_.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
    curl_.set(CURLOPT_POSTFIELDS, request_.body.c_str());
  }
  curl_.set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
  for (const std::string& line : curlHeaderLines(request_)) {
    headerLines_.append(line);
  }
  curl_.set(CURLOPT_HTTPHEADER, headerLines_.get());
  curl_.set(CURLOPT_ACCEPT_ENCODING, "");  // all that libcurl can decode
}

void HttpTransfer::setCallbacks() {
  curl_.set(CURLOPT_WRITEFUNCTION, &HttpTransfer::onWrite);
  curl_.set(CURLOPT_WRITEDATA, this);
  if (progress_) {
    curl_.set(CURLOPT_XFERINFOFUNCTION, &HttpTransfer::onProgress);
    curl_.set(CURLOPT_XFERINFODATA, this);
    curl_.set(CURLOPT_NOPROGRESS, 0L);
  }
}

std::size_t HttpTransfer::onWrite(char* data, std::size_t size, std::size_t count, void* transfer) {
  HttpTransfer& self = *static_cast<HttpTransfer*>(transfer);
  const std::size_t length = size * count;
  self.bodyBytes_ += length;
  if (self.bodyBytes_ > self.settings_.maxResponseBytes) {
    return CURL_WRITEFUNC_ERROR;
  }
  try {
    const bool isTaken = !self.write_ || self.write_(length, data) == length;
    return isTaken ? length : CURL_WRITEFUNC_ERROR;
  } catch (...) {  // an exception must not pass through libcurl's C code
    self.thrown_ = std::current_exception();
    return CURL_WRITEFUNC_ERROR;
  }
}

int HttpTransfer::onProgress(void* transfer, curl_off_t total, curl_off_t received, curl_off_t,
                             curl_off_t) {
  HttpTransfer& self = *static_cast<HttpTransfer*>(transfer);
  try {
    const bool goesOn =
        self.progress_(static_cast<std::uint64_t>(received), static_cast<std::uint64_t>(total));
    return goesOn ? 0 : 1;
  } catch (...) {
    self.thrown_ = std::current_exception();
    return 1;
  }
}

long HttpTransfer::status() const {
  const long kFirstFinalStatus = 200;  // 1xx statuses only precede the response
  long status = 0;
  curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
  return status < kFirstFinalStatus ? 0 : status;
}

std::unordered_map<std::string, std::string> HttpTransfer::headers() const {
  const int kFinalAnswer = -1;
  std::unordered_map<std::string, std::string> result;
  if (status() == 0) {  // libcurl would return the headers of the exchange before
    return result;
  }
  curl_header* header = nullptr;
  while ((header = curl_easy_nextheader(curl_.get(), CURLH_HEADER, kFinalAnswer, header)) !=
         nullptr) {
    // libcurl leaves the line end in an otherwise empty value.
    result.emplace(lowerCase(header->name), Str::trim(header->value));
  }
  return result;
}

}  // namespace host
