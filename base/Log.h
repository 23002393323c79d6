// The levels of the device's log, and a macro with which programs of this machine log failures.

#ifndef BASE_LOG_H_
#define BASE_LOG_H_

#include <ov_sdk.h>

namespace base {

constexpr int kLogFailure = 2;
constexpr int kLogInformation = 5;

}  // namespace base

// Logs a failure, with arguments as for printf: what failed, where, and what to do. A macro,
// because the log line names the place of the call.
#define BASE_LOG_FAILURE(...) \
  ov_print_log2(::base::kLogFailure, __FILE__, __LINE__, __func__, __VA_ARGS__)

#endif  // BASE_LOG_H_
