// The host's side of the device's log: ov_print_log2 writes one line per call, up to the level, and
// to the place, that the settings name. Safe from any thread; errno is kept.

#ifndef PLATFORM_HOST_LOG_H_
#define PLATFORM_HOST_LOG_H_

#include <ov_sdk.h>

namespace host {

constexpr int kLogFailure = 2;
constexpr int kLogInformation = 5;

// True when a line of this level would be written.
bool logs(int level);

}  // namespace host

// Logs a failure of the host's own in printf's manner: what failed, where, and what to try. A
// macro, because the line names the place of the call.
#define HOST_LOG_FAILURE(...) \
  ov_print_log2(::host::kLogFailure, __FILE__, __LINE__, __func__, __VA_ARGS__)

#endif  // PLATFORM_HOST_LOG_H_
