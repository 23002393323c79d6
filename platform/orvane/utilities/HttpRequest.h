// An HTTP request as the caller builds it; HttpRequestRunner performs it. An integrator implements
// the members in liborvane_utilities.so. An object belongs to one thread at a time. All texts are
// copied before a call returns. Nothing here connects, waits or reports a failure: a request that
// cannot be sent makes HttpRequestRunner::PerformRequest() fail.

#ifndef PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_
#define PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_

#include <memory>
#include <string>

namespace orvane {
namespace utilities {

class HttpRequest {
 public:
  // `method` is the HTTP method in upper case, such as "POST". `url` is an absolute https URL. A
  // wrong URL is accepted here; the runner then reports a failed transfer.
  HttpRequest(const std::string& method, const std::string& url);
  // The request can end before or after the runner that performed it.
  ~HttpRequest();

  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;

  // Sets the request body, which can have any bytes, NUL included. A second call replaces the
  // body.
  void AddPostData(const std::string& body);

  // Adds a request header. Headers are sent in the order in which they were added, one with an
  // empty value too. A name or value with a line end must not become a second header: the runner
  // either refuses the whole request or sends it without the header.
  void AddHeader(const std::string& name, const std::string& value);

  // Returns the request as a command line of curl, for the log. The command has everything that
  // the request has; passwords and tokens are not masked.
  std::string toCurlRequest() const;

 private:
  friend class HttpRequestRunner;

  // Belongs to the implementation, which defines it in its own source.
  struct Data;
  std::unique_ptr<Data> data;
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_
