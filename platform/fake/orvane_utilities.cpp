#include <algorithm>
#include <istream>
#include <ostream>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>
#include <orvane/utilities/HttpRequest.h>
#include <orvane/utilities/HttpRequestRunner.h>
#include <orvane/utilities/SerializationUtils.h>
#include <orvane/utilities/Str.h>

#include "platform/fake/FakeConfig.h"
#include "platform/fake/FakePlatform.h"

using fake::platform;

namespace orvane {
namespace utilities {

struct HttpRequest::Data {
  fake::Request request;
};

HttpRequest::HttpRequest(const std::string& method, const std::string& url) : data(new Data) {
  platform().record("HttpRequest", method + " " + url);
  data->request.method = method;
  data->request.url = url;
}

HttpRequest::~HttpRequest() {
  platform().record("~HttpRequest");
}

void HttpRequest::AddPostData(const std::string& body) {
  platform().record("AddPostData", body);
  data->request.body = body;
}

void HttpRequest::AddHeader(const std::string& name, const std::string& value) {
  platform().record("AddHeader", name + ": " + value);
  data->request.headers.emplace_back(name, value);
}

std::string HttpRequest::toCurlRequest() const {
  platform().record("toCurlRequest");
  return "curl " + data->request.url + " " + data->request.body;
}

namespace {

fake::Http::Answer nextAnswer(bool arrangedToFail) {
  fake::Http& http = platform().http;
  if (arrangedToFail || http.answers.empty()) {
    return {7, 0, "", {}};
  }
  const fake::Http::Answer answer = http.answers.front();
  http.answers.pop_front();
  return answer;
}

void announce(const HttpRequest& request) {
  if (platform().http.beforeSending) {
    platform().http.beforeSending(request.toCurlRequest());
  }
}

// Passes the body on in pieces of a few bytes, as a network may.
bool deliver(const std::string& body, const HttpRequestRunner::WriteCallback& write) {
  const std::size_t piece = 5;
  for (std::size_t start = 0; write && start < body.size(); start += piece) {
    const std::size_t length = std::min(piece, body.size() - start);
    if (write(length, body.data() + start) != length) {
      return false;
    }
  }
  return true;
}

}  // namespace

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status,
                                      std::vector<char>* body, unsigned int limit) {
  announce(request);
  const bool fails = platform().record("PerformRequest", std::to_string(limit));
  platform().http.requests.push_back(request.data->request);
  platform().http.requests.back().limit = static_cast<long>(limit);
  const fake::Http::Answer answer = nextAnswer(fails);
  *status = answer.status;
  body->assign(answer.body.begin(), answer.body.end());
  return answer.err;
}

int HttpRequestRunner::PerformRequest(const HttpRequest& request, long* status,
                                      std::unordered_map<std::string, std::string>* headers,
                                      ReadCallback read, WriteCallback write,
                                      ProgressCallback progress) {
  announce(request);
  const bool fails =
      platform().record("PerformRequestWithHeaders", std::string(read ? "read " : "no read ") +
                                                         (progress ? "progress" : "no progress"));
  platform().http.requests.push_back(request.data->request);
  const fake::Http::Answer answer = nextAnswer(fails);
  *status = answer.status;
  *headers = answer.headers;
  return deliver(answer.body, write) ? answer.err : 23;
}

CfgWrapper::CfgWrapper(const std::string& path, OpenMode mode) : handle(nullptr) {
  platform().record("CfgWrapper", path + " " + std::to_string(mode));
  handle = new ov_config;
  handle->path = path;
  handle->values = platform().config.files[path];
  handle->secretKeys = platform().config.secretKeys[path];
}

CfgWrapper::~CfgWrapper() {
  platform().calls.push_back("~CfgWrapper");
  delete handle;
}

std::set<std::string> CfgWrapper::keys() const {
  platform().record("keys");
  std::set<std::string> names;
  for (const auto& entry : handle->values) {
    names.insert(entry.first);
  }
  return names;
}

void CfgWrapper::save() {
  if (!platform().record("save")) {
    platform().config.files[handle->path] = handle->values;
    platform().config.secretKeys[handle->path] = handle->secretKeys;
  }
}

void CfgWrapper::saveAndClose() {
  if (!platform().record("saveAndClose")) {
    platform().config.files[handle->path] = handle->values;
    platform().config.secretKeys[handle->path] = handle->secretKeys;
  }
}

void CfgWrapper::closeNoSave() {
  platform().record("closeNoSave");
}

int BookStoreVersionProxy::storeVersion(bool refresh) {
  platform().record("storeVersion", refresh ? "true" : "false");
  return platform().device.storeVersion;
}

std::string BookStoreVersionProxy::configKeyAccessToken() {
  return "fakeAccess";
}
std::string BookStoreVersionProxy::configKeyRefreshToken() {
  return "fakeRefresh";
}
std::string BookStoreVersionProxy::configKeyExpirationToken() {
  return "fakeExpiration";
}
std::string BookStoreVersionProxy::configKeySacAccessToken() {
  return "fakeSac";
}

// Length, colon, bytes.
int SerializationUtils::SerializeString(std::string const& value, std::ostream& out) {
  if (platform().record("SerializeString", value)) {
    return 1;
  }
  out << value.size() << ':' << value;
  return out ? 0 : 1;
}

int SerializationUtils::DeserializeString(std::istream& in, std::string* value) {
  if (platform().record("DeserializeString")) {
    return 1;
  }
  std::size_t length = 0;
  char colon = 0;
  if (!(in >> length >> std::noskipws >> colon) || colon != ':') {
    in.clear();
    in.seekg(0, std::ios::end);
    in.get();
    return 1;
  }
  value->resize(length);
  return in.read(&(*value)[0], static_cast<std::streamsize>(length)) ? 0 : 1;
}

const std::string Str::WHITESPACE = " \t\n\r\v\f";

std::string Str::trim(const std::string& text, const std::string& characters) {
  platform().record("trim", text);
  const std::size_t first = text.find_first_not_of(characters);
  return first == std::string::npos
             ? std::string()
             : text.substr(first, text.find_last_not_of(characters) - first + 1);
}

}  // namespace utilities
}  // namespace orvane
