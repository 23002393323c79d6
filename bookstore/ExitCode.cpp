#include "bookstore/ExitCode.h"

namespace bookstore {

const std::vector<ExitStatus>& exitStatuses() {
  static const std::vector<ExitStatus> all = {
      {kDone, "done"},
      {kStoreRefused, "the store returned an error"},
      {kUsage, "wrong usage"},
      {kTransferFailed, "the HTTP exchange failed"},
      {kBadStatus, "the HTTP status was not 200"},
      {kNoData, "the response lacks the expected data"},
      {kNoSession, "not signed in, no store, or no sample"},
      {kLocalFailure, "a local file, the queue or the output failed"},
  };
  return all;
}

}  // namespace bookstore
