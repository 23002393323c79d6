// Performs HTTP requests on the calling thread. Holds no state of its own: objects are cheap, and
// several threads may each use one.

#ifndef PLATFORM_ORVANE_UTILITIES_HTTPREQUESTRUNNER_H_
#define PLATFORM_ORVANE_UTILITIES_HTTPREQUESTRUNNER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include <orvane/utilities/HttpRequest.h>

namespace orvane {
namespace utilities {

class HttpRequestRunner {
 public:
  // Asked for the next piece of the request body: puts at most `length` bytes at `data` and returns
  // how many; 0 ends the body.
  using ReadCallback = std::function<std::size_t(std::size_t length, char* data)>;

  // Given the next piece of the response body, `length` bytes at `data`, valid during the call
  // only. A result other than `length` stops the transfer.
  using WriteCallback = std::function<std::size_t(std::size_t length, const char* data)>;

  // Told the bytes received so far and in all; `total` is 0 while that is not known. False stops
  // the transfer.
  using ProgressCallback = std::function<bool(std::uint64_t received, std::uint64_t total)>;

  HttpRequestRunner() = default;

  // Performs `request` and waits for its end. Returns 0 when an answer arrived, whatever its
  // status, and another value when the transfer failed. Writes the HTTP status to `*status` (0 when
  // no answer arrived) and the response body to `*body`. `limit` is the longest time that the whole
  // transfer may take, in seconds.
  int PerformRequest(const HttpRequest& request, long* status, std::vector<char>* body,
                     unsigned int limit);

  // The same without a time limit, with the response headers in `*headers` (name to value; of a
  // repeated name one value is kept) and the bodies passed through callbacks. An empty `read` sends
  // the body that the request holds; an empty `write` drops the response body; an empty `progress`
  // lets the transfer run.
  int PerformRequest(const HttpRequest& request, long* status,
                     std::unordered_map<std::string, std::string>* headers, ReadCallback read,
                     WriteCallback write, ProgressCallback progress);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_HTTPREQUESTRUNNER_H_
