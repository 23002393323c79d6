// What the commands that use or change the customer's session share.

#ifndef BOOKSTORE_COMMANDS_CUSTOMERSESSION_H_
#define BOOKSTORE_COMMANDS_CUSTOMERSESSION_H_

#include <optional>
#include <string>

#include "base/WholeFile.h"
#include "bookstore/Command.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/Request.h"

namespace bookstore {

// Makes other processes that use or change the session wait while the object lives. A save of the
// token file takes another lock. Used by one thread.
class SessionLock {
 public:
  // Waits for the lock; takes none in a dry run, which changes nothing. Throws Failure when locking
  // fails.
  explicit SessionLock(const Context& context);

 private:
  std::optional<base::FileLock> lock_;
};

// The failure of a command that needs a session when nobody is signed in.
Failure notSignedIn();

// Throws Failure unless `error`, the result of an operation on `url` with the customer's session,
// is Ok. `listener` was alive during the operation; `lack` says what is wrong with a response that
// lacks the expected data, as in "returned no customer".
void requireResponse(const FailureListener& listener, graphql::GraphQLApi::ApiError error,
                     const std::string& url, const std::string& lack);

// Throws Failure unless the token file contains these tokens: the library does not report whether
// it could write the file. `what` says what happened before.
void requireTokensSaved(const std::string& what, const std::string& accessToken,
                        const std::string& refreshToken);

// The end of a failure message: says so when the token file contains no session.
std::string remainingSession();

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_CUSTOMERSESSION_H_
