#include "bookstore/commands/CustomerSession.h"

#include "base/DevicePaths.h"
#include "base/HttpResult.h"
#include "base/Settings.h"
#include "bookstore/commands/DeviceFiles.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

const char kHowToGoOn[] = "bookstore refresh, or sign in again";

}  // namespace

SessionLock::SessionLock(const Context& context) {
  if (context.arguments.has("--dry-run")) {
    return;
  }
  lock_.emplace(base::hostPath(base::kSessionPath));
  if (const base::FileFailure& failure = lock_->failure()) {
    throw Failure(kLocalFailure, "the lock beside " + tokenFile() + " fails: " + failure.text(),
                  "set ORVANE_ROOT to a folder that can be written");
  }
}

Failure notSignedIn() {
  return Failure(kNoSession, "not signed in: there is no access token", "bookstore sign-in");
}

void requireAnswer(const FailureListener& listener, GraphQLApi::ApiError error,
                   const std::string& url, const std::string& lack) {
  if (base::isSessionRefused(listener.status())) {
    throw Failure(kNoSession, url + " says that the session has ended", kHowToGoOn);
  }
  listener.throwIfAny(url);
  switch (error) {
    case GraphQLApi::Ok:
      return;
    case GraphQLApi::NetworkError:
      // The library reports no number for this one.
      throw Failure(kTransferFailed, "the transfer to " + url + " failed",
                    "run it again with -v to see why");
    case GraphQLApi::BadResponse:
      break;
  }
  throw Failure(kNoData, url + " " + lack, std::string(kHowToGoOn) + "; -v shows the answer");
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
