// Why a command failed, and where the codes of library and runner become such a reason.
// Holds no state; safe from any thread.

#ifndef BOOKSTORE_FAILURE_H_
#define BOOKSTORE_FAILURE_H_

#include <stdexcept>
#include <string>

#include "bookstore/ExitCode.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace bookstore {

// Thrown where the reason is found; run() prints it and ends the program with its code.
class Failure : public std::runtime_error {
 public:
  // `what` says what went wrong, beginning in lower case; `remedy` is a sentence that says what the
  // person can do. Both without a full stop.
  Failure(ExitCode code, const std::string& what, const std::string& remedy);

  ExitCode code() const { return code_; }
  const std::string& remedy() const { return remedy_; }

 private:
  ExitCode code_;
  std::string remedy_;
};

// The failure that the library's error callback reports for the request to `url`: the runner's
// result or, when that is 0, an HTTP status other than 200.
Failure transferFailure(int result, int status, const std::string& url);

// `what`, followed by the server's own words in parentheses, if there are any.
std::string withServerWords(const std::string& what, const std::string& words);

// Throws a Failure when the record of an operation on `url` reports an error.
void throwIfFailed(const graphql::GraphQLStorageApi::ErrorInfo& info, const std::string& url);

}  // namespace bookstore

#endif  // BOOKSTORE_FAILURE_H_
