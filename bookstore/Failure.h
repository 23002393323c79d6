// Why a command could not do its job, and the places where foreign codes become such a reason.
// Holds no state; safe from any thread.

#ifndef BOOKSTORE_FAILURE_H_
#define BOOKSTORE_FAILURE_H_

#include <stdexcept>
#include <string>

#include "bookstore/ExitCode.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace bookstore {

// Thrown by whoever finds the reason; run() prints it and ends the program with its code.
class Failure : public std::runtime_error {
 public:
  // `what` says what failed and where, `remedy` what to try: one clause each, without a full stop.
  Failure(ExitCode code, const std::string& what, const std::string& remedy);

  ExitCode code() const { return code_; }
  const std::string& remedy() const { return remedy_; }

 private:
  ExitCode code_;
  std::string remedy_;
};

// What the library's error callback was told of the request to `url`: the runner's result, or, when
// that is 0, an HTTP status other than 200.
Failure transferFailure(int result, int status, const std::string& url);

// What the record of an operation on `url` says. Does nothing when it tells of no error; otherwise
// throws a Failure.
void throwIfFailed(const graphql::GraphQLStorageApi::ErrorInfo& info, const std::string& url);

}  // namespace bookstore

#endif  // BOOKSTORE_FAILURE_H_
