// What a request of the development host holds. Used by one thread at a time.

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
  bool hasBody = false;                                      // an empty body is a body too
  std::vector<std::pair<std::string, std::string>> headers;  // name, value; in order of sending
};

// The headers in the form that curl takes, library and program alike: those of the request, and
// before them a line "Name:" for each header that curl would add without being asked.
std::vector<std::string> curlHeaderLines(const HttpRequestData& request);

}  // namespace host

struct orvane::utilities::HttpRequest::Data : host::HttpRequestData {};

#endif  // PLATFORM_HOST_HTTPREQUESTDATA_H_
