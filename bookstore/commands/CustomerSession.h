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

// Keeps other processes that run a command on the session waiting while the object lives. A save of
// the token file takes another lock, so that it can happen meanwhile. Used by one thread.
class SessionLock {
 public:
  // Waits for the lock; takes none in a dry run, which changes nothing. Throws Failure when the
  // lock cannot be had.
  explicit SessionLock(const Context& context);

 private:
  std::optional<base::FileLock> lock_;
};

// Nobody is signed in where somebody has to be.
Failure notSignedIn();

// Throws Failure unless `error`, the result of an operation on `url` with the customer's session,
// is Ok. `listener` heard what was reported meanwhile; `lack` is what an answer without the
// expected data did, as in "answered without a customer".
void requireAnswer(const FailureListener& listener, graphql::GraphQLApi::ApiError error,
                   const std::string& url, const std::string& lack);

// Throws Failure unless the token file holds these tokens: the library does not learn whether it
// was written. `what` is what happened before.
void requireTokensSaved(const std::string& what, const std::string& accessToken,
                        const std::string& refreshToken);

// The end of a message of failure: says so when the token file holds no session.
std::string remainingSession();

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_CUSTOMERSESSION_H_
