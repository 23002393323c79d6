// The exit codes of the program. Holds no state; safe from any thread.

#ifndef BOOKSTORE_EXITCODE_H_
#define BOOKSTORE_EXITCODE_H_

#include <vector>

namespace bookstore {

enum ExitCode : int {
  kDone = 0,
  kStoreRefused = 1,
  kUsage = 2,
  kTransferFailed = 3,
  kBadStatus = 4,
  kNoData = 5,
  kNoSession = 6,
  kLocalFailure = 7,
};

struct ExitStatus {
  ExitCode code;
  const char* meaning;  // in a few words, for --help
};

// Every exit code, in order.
const std::vector<ExitStatus>& exitStatuses();

}  // namespace bookstore

#endif  // BOOKSTORE_EXITCODE_H_
