#include "bookstore/Session.h"

#include "bookstore/DeviceFiles.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

SessionLock::SessionLock(const Context& context) {
  if (context.arguments.has("--dry-run")) {
    return;
  }
  lock_.emplace(tokenFile() + ".session");
  if (const host::FileFailure& failure = lock_->failure()) {
    throw Failure(kLocalFailure, "the lock beside " + tokenFile() + " fails: " + failure.text(),
                  "set ORVANE_ROOT to a folder that can be written");
  }
}

Failure notSignedIn() {
  return Failure(kNoSession, "not signed in: there is no access token", "bookstore sign-in");
}

void requireTokensSaved(const std::string& what, const std::string& accessToken,
                        const std::string& refreshToken) {
  const GraphQLStorageApi saved;
  if (saved.accessToken() != accessToken || saved.refreshToken() != refreshToken) {
    throw Failure(kLocalFailure, what + ", but " + tokenFile() + " does not tell so",
                  "see the log lines above, and whether that folder can be written and has room");
  }
}

std::string remainingSession() {
  return GraphQLStorageApi().isLoggedIn() ? "" : "; nobody is signed in now";
}

}  // namespace bookstore
