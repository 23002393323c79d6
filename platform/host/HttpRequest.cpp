#include <orvane/utilities/HttpRequest.h>

#include <strings.h>

#include <algorithm>
#include <initializer_list>

#include "base/HttpSettings.h"
#include "platform/host/HttpRequestData.h"

namespace host {

namespace {

using Header = std::pair<std::string, std::string>;

// These methods send Content-Length also for an empty body.
bool announcesBody(const std::string& method) {
  return method == "POST" || method == "PUT" || method == "PATCH";
}

bool holdsHeader(const HttpRequestData& request, const char* name) {
  return std::any_of(request.headers.begin(), request.headers.end(), [name](const Header& header) {
    return ::strcasecmp(header.first.c_str(), name) == 0;
  });
}

std::string curlHeaderLine(const Header& header) {
  // curl removes a header that is given as "Name: "; "Name;" sends an empty header.
  const bool isBlank = header.second.find_first_not_of(" \t\v\f") == std::string::npos;
  return isBlank ? header.first + ";" : header.first + ": " + header.second;
}

// Quotes one word for a POSIX shell. A command line cannot contain NUL bytes.
std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char character : text) {
    if (character == '\'') {
      word += "'\\''";
    } else {
      word += character;
    }
  }
  return word + "'";
}

std::string settingsOptions(const base::HttpSettings& settings) {
  std::string options = settings.http2 ? " --http2" : " --http1.1";
  if (!settings.caFile.empty()) {
    options += " --cacert " + quoted(settings.caFile);
  }
  if (!settings.pinnedKey.empty()) {
    options += " --pinnedpubkey " + quoted(settings.pinnedKey);
  }
  for (const std::string& entry : settings.connectTo) {
    options += " --connect-to " + quoted(entry);
  }
  return options;
}

std::string curlCommand(const HttpRequestData& request) {
  const bool asksForHead = request.method == "HEAD";
  std::string command = "curl --globoff --compressed --noproxy '*'";
  command += settingsOptions(base::readHttpSettings());
  command += asksForHead ? " --head" : " -X " + quoted(request.method);
  command += " --url " + quoted(request.url);
  for (const std::string& line : curlHeaderLines(request)) {
    command += " -H " + quoted(line);
  }
  if (request.hasBody && !asksForHead) {
    command += " --data-raw " + quoted(request.body);
  }
  return command;
}

}  // namespace

std::vector<std::string> curlHeaderLines(const HttpRequestData& request) {
  std::vector<std::string> lines;
  for (const char* name : {"Accept", "Content-Type", "Expect", "User-Agent"}) {
    if (!holdsHeader(request, name)) {
      lines.push_back(std::string(name) + ":");
    }
  }
  for (const Header& header : request.headers) {
    lines.push_back(curlHeaderLine(header));
  }
  return lines;
}

}  // namespace host

namespace orvane {
namespace utilities {

HttpRequest::HttpRequest(const std::string& method, const std::string& url)
    : data(std::make_unique<Data>()) {
  data->method = method;
  data->url = url;
  data->hasBody = host::announcesBody(method);
}

HttpRequest::~HttpRequest() = default;

void HttpRequest::AddPostData(const std::string& body) {
  data->body = body;
  data->hasBody = true;
}

void HttpRequest::AddHeader(const std::string& name, const std::string& value) {
  data->headers.emplace_back(name, value);
}

std::string HttpRequest::toCurlRequest() const {
  return host::curlCommand(*data);
}

}  // namespace utilities
}  // namespace orvane
