// One HTTP exchange with libcurl, shared by both overloads of the runner. Used by one thread.

#ifndef PLATFORM_HOST_HTTPTRANSFER_H_
#define PLATFORM_HOST_HTTPTRANSFER_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <unordered_map>

#include <orvane/utilities/HttpRequestRunner.h>

#include "base/HttpSettings.h"
#include "platform/host/CurlHandle.h"
#include "platform/host/HttpRequestData.h"

namespace host {

// Every exchange uses https only, verifies the server's certificate and name, and reuses a kept
// connection if possible. It follows no redirects, keeps no cookies, and ignores proxies from the
// environment and passwords from a .netrc file or a URL. So a bearer token goes only to the server
// that the request and the host's settings name.
class HttpTransfer {
 public:
  using WriteCallback = orvane::utilities::HttpRequestRunner::WriteCallback;
  using ProgressCallback = orvane::utilities::HttpRequestRunner::ProgressCallback;

  // Prepares to send `request`, which it reads until the end of perform(). `limitSeconds` is the
  // time limit for the whole exchange. 0 means no limit; then the exchange fails when the server
  // sends nothing for ORVANE_STALL_TIMEOUT. `progress` is called as bytes arrive, before
  // decompression. `write` gets the response body after decompression. Both may be empty.
  HttpTransfer(const HttpRequestData& request, unsigned int limitSeconds, WriteCallback write,
               ProgressCallback progress);

  // Performs the exchange, once. Returns 0, or a failure, which it logs. An exception from a
  // callback stops the exchange and is rethrown.
  int perform();

  // The status of the response, even if the rest of it failed; 0 without a response.
  long status() const;

  // The headers of the response: names in lower case, values without blanks around them. Of a
  // repeated name, the first value is kept. Empty without a response.
  std::unordered_map<std::string, std::string> headers() const;

 private:
  void setRequest();
  void setRoute();
  void setCallbacks();

  static std::size_t onWrite(char* data, std::size_t size, std::size_t count, void* transfer);
  static int onProgress(void* transfer, curl_off_t total, curl_off_t received, curl_off_t,
                        curl_off_t);

  const HttpRequestData& request_;
  const base::HttpSettings settings_;
  const unsigned int limitSeconds_;
  const WriteCallback write_;
  const ProgressCallback progress_;

  CurlHandle curl_;
  CurlList headerLines_;
  CurlList connectTo_;
  std::uint64_t bodyBytes_ = 0;
  std::exception_ptr thrown_;
};

}  // namespace host

#endif  // PLATFORM_HOST_HTTPTRANSFER_H_
