// One HTTP transfer on libcurl: what both overloads of the runner share. Used by one thread.

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

// How every transfer travels: by https only, to a server whose certificate and name verify, on a
// kept connection where there is one. No redirect is followed, no cookie kept, no password taken
// from a .netrc file or a URL, and no proxy from the environment: a bearer token goes only where
// the request and the host's own settings say.
class HttpTransfer {
 public:
  using WriteCallback = orvane::utilities::HttpRequestRunner::WriteCallback;
  using ProgressCallback = orvane::utilities::HttpRequestRunner::ProgressCallback;

  // Prepares to send `request`, which it reads until the end of perform(). `limitSeconds` is the
  // longest time for the whole transfer; with 0 there is none, and a server that sends nothing for
  // ORVANE_STALL_TIMEOUT fails the transfer. `write` is given the body of the answer after
  // decompression, `progress` told of the bytes as they arrive, before it; both may be empty.
  HttpTransfer(const HttpRequestData& request, unsigned int limitSeconds, WriteCallback write,
               ProgressCallback progress);

  // Performs the transfer, once. Returns 0, or a failure, which it logs. What a callback throws
  // stops the transfer and is thrown on.
  int perform();

  // The status of the answer, also when the rest of it failed later on; 0 when none arrived.
  long status() const;

  // The headers of the answer: names in lower case, values without blanks around them. Of a
  // repeated name the first value is kept. Empty when no answer arrived.
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
