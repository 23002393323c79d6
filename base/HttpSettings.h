// The settings of HTTP, for the runner and for the curl command of a request. Safe from any thread,
// except beside setenv().

#ifndef BASE_HTTPSETTINGS_H_
#define BASE_HTTPSETTINGS_H_

#include <cstdint>
#include <string>
#include <vector>

namespace base {

struct HttpSettings {
  std::string caFile;                  // empty: the system's CA certificates
  std::string pinnedKey;               // empty: any key with a valid certificate
  std::vector<std::string> connectTo;  // entries HOST:PORT:TO-HOST:TO-PORT, tried in this order
  bool http2;                          // false: HTTP/1.1
  std::uint64_t maxResponseBytes;      // after decompression
  long connectTimeoutSeconds;
  long stallTimeoutSeconds;
};

// The settings as they are now.
HttpSettings readHttpSettings();

}  // namespace base

#endif  // BASE_HTTPSETTINGS_H_
