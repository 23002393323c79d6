// Utilities that store nothing: no configuration file has a value, and the response to every
// request is the value of the environment variable FOOTPRINT_ANSWER.

#include <cstdlib>
#include <cstring>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>
#include <orvane/utilities/HttpRequest.h>
#include <orvane/utilities/HttpRequestRunner.h>
#include <orvane/utilities/SerializationUtils.h>
#include <orvane/utilities/Str.h>

namespace orvane {
namespace utilities {

struct HttpRequest::Data {};

HttpRequest::HttpRequest(const std::string&, const std::string&) {}
HttpRequest::~HttpRequest() = default;
void HttpRequest::AddPostData(const std::string&) {}
void HttpRequest::AddHeader(const std::string&, const std::string&) {}

std::string HttpRequest::toCurlRequest() const {
  return std::string();
}

int HttpRequestRunner::PerformRequest(const HttpRequest&, long* status, std::vector<char>* body,
                                      unsigned int) {
  const char* answer = std::getenv("FOOTPRINT_ANSWER");
  *status = 200;
  body->assign(answer, answer + std::strlen(answer));
  return 0;
}

int HttpRequestRunner::PerformRequest(const HttpRequest&, long*,
                                      std::unordered_map<std::string, std::string>*, ReadCallback,
                                      WriteCallback, ProgressCallback) {
  return 1;
}

CfgWrapper::CfgWrapper(const std::string&, OpenMode) : handle(nullptr) {}
CfgWrapper::~CfgWrapper() = default;

std::set<std::string> CfgWrapper::keys() const {
  return std::set<std::string>();
}

void CfgWrapper::save() {}
void CfgWrapper::saveAndClose() {}
void CfgWrapper::closeNoSave() {}

int BookStoreVersionProxy::storeVersion(bool) {
  return 3;
}

std::string BookStoreVersionProxy::configKeyAccessToken() {
  return "access";
}

std::string BookStoreVersionProxy::configKeyRefreshToken() {
  return "refresh";
}

std::string BookStoreVersionProxy::configKeyExpirationToken() {
  return "expiration";
}

std::string BookStoreVersionProxy::configKeySacAccessToken() {
  return "device";
}

int SerializationUtils::SerializeString(std::string const&, std::ostream&) {
  return 1;
}

int SerializationUtils::DeserializeString(std::istream&, std::string*) {
  return 1;
}

const std::string Str::WHITESPACE = " \t\n\r\v\f";

std::string Str::trim(const std::string& text, const std::string&) {
  return text;
}

}  // namespace utilities
}  // namespace orvane
