// Performs HTTP requests. An integrator implements both overloads in liborvane_utilities.so. Each
// runs on the calling thread, waits for the end of the transfer, and calls the callbacks on that
// thread. An object has no state: the library makes one per request, and several threads may each
// use one at the same time.
//
// What holds for every transfer:
// - Certificate and host name of the server are verified; a URL without TLS is refused. The
//   requests carry tokens and passwords.
// - No redirect is followed: its status and headers are the response.
// - A body that the server compressed is passed on decompressed.
// - Header names of the response are converted to lower case. The library looks for
//   "x-magento-cache-id" byte for byte.

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
  // Called for the next piece of the request body. Writes at most `length` bytes to `data` and
  // returns how many; 0 ends the body.
  using ReadCallback = std::function<std::size_t(std::size_t length, char* data)>;

  // Called with the next piece of the response body: `length` bytes at `data`, valid during the
  // call only. Returns `length`; any other result stops the transfer, which then has failed.
  using WriteCallback = std::function<std::size_t(std::size_t length, const char* data)>;

  // Called now and then with the number of body bytes received so far, and with the size of the
  // whole body, which is 0 while it is not known. False stops the transfer, which then has failed.
  using ProgressCallback = std::function<bool(std::uint64_t received, std::uint64_t total)>;

  HttpRequestRunner() = default;

  // Performs `request`. `limit` is the longest time in seconds that the transfer may take, from
  // the first look-up of the name to the last byte; the library passes 30.
  //
  // Returns 0 when a whole response arrived, whatever its status. `*status` is then the HTTP
  // status, and `*body`, which is emptied first, has all bytes of the response body. Returns
  // another value, an error code of the implementation, when the transfer failed: no connection, a
  // server that is not trusted, the limit reached, a response that ended early. `*status` is then
  // 0 when no response began, and `*body` must not be used. A response with a status below 200 is
  // not a response. No exception reports a failed transfer. The pointers are not null.
  int PerformRequest(const HttpRequest& request, long* status, std::vector<char>* body,
                     unsigned int limit);

  // The same without a time limit, for sign-in: a server that sends nothing any more must still
  // make the transfer fail, after a time that the implementation chooses. The bodies pass through
  // the callbacks. An empty `read` sends the body of the request; with a `read`, that body is not
  // sent. An empty `write` drops the response body; an empty `progress` is not called. The library
  // passes only `write`.
  //
  // Results are those of the other overload. `*headers` is emptied first and then has the headers
  // of the response: name in lower case, and value. A name that is sent several times has one of
  // its values. An exception that a callback throws stops the transfer and leaves this function.
  int PerformRequest(const HttpRequest& request, long* status,
                     std::unordered_map<std::string, std::string>* headers, ReadCallback read,
                     WriteCallback write, ProgressCallback progress);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_HTTPREQUESTRUNNER_H_
