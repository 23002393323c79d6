// Writes to the device's log. Internal: callers do not include it.

#ifndef GRAPHQL_API_LOG_H_
#define GRAPHQL_API_LOG_H_

#include <ov_sdk.h>

namespace graphql {

constexpr int kLogFailure = 2;
constexpr int kLogInformation = 5;

}  // namespace graphql

// A macro, because a log line contains the source location and the full signature of the function.
#define GRAPHQL_LOG(level, ...) \
  ov_print_log2(level, __FILE__, __LINE__, __PRETTY_FUNCTION__, __VA_ARGS__)

#endif  // GRAPHQL_API_LOG_H_
