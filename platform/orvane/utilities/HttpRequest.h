// One HTTP request as the caller builds it; HttpRequestRunner performs it. An object is used by one
// thread at a time.

#ifndef PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_
#define PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_

#include <memory>
#include <string>

namespace orvane {
namespace utilities {

class HttpRequest {
 public:
  // Copies both texts: the method, such as "POST", and the absolute URL. A URL that cannot be used
  // is not refused here: the runner then reports a failed transfer.
  HttpRequest(const std::string& method, const std::string& url);
  ~HttpRequest();

  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;

  // Copies the request body; a second call replaces the first one's.
  void AddPostData(const std::string& body);

  // Copies one request header. Headers go out in the order in which they were added.
  void AddHeader(const std::string& name, const std::string& value);

  // The request as a curl command line, for the log. Holds whatever the request holds: credentials
  // are not masked.
  std::string toCurlRequest() const;

 private:
  friend class HttpRequestRunner;

  // What a request holds is the business of whoever defines this class.
  struct Data;
  std::unique_ptr<Data> data;
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_HTTPREQUEST_H_
