// The data of a request on the development host. Used by one thread at a time.

#ifndef PLATFORM_HOST_HTTPREQUESTDATA_H_
#define PLATFORM_HOST_HTTPREQUESTDATA_H_

#include <string>
#include <utility>
#include <vector>

#include <orvane/utilities/HttpRequest.h>

namespace host {

struct HttpRequestData {
  std::string method;
  std::string url;
  std::string body;
  bool hasBody = false;                                      // an empty body counts as a body
  std::vector<std::pair<std::string, std::string>> headers;  // name, value; in the order of sending
};

// The headers in the form that both libcurl and the curl program accept. Before the headers of the
// request comes a line "Name:" for each header that curl would add by default, to remove it.
std::vector<std::string> curlHeaderLines(const HttpRequestData& request);

}  // namespace host

struct orvane::utilities::HttpRequest::Data : host::HttpRequestData {};

#endif  // PLATFORM_HOST_HTTPREQUESTDATA_H_
