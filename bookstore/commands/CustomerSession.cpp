#include "bookstore/commands/CustomerSession.h"

#include "base/DevicePaths.h"
#include "base/HttpResult.h"
#include "base/Settings.h"
#include "bookstore/commands/DeviceFiles.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

const char kRenewSession[] = "Run \"bookstore refresh\" or \"bookstore sign-in\"";

}  // namespace

SessionLock::SessionLock(const Context& context) {
  if (context.arguments.has("--dry-run")) {
    return;
  }
  lock_.emplace(base::hostPath(base::kSessionPath));
  if (const base::FileFailure& failure = lock_->failure()) {
    throw Failure(kLocalFailure,
                  "cannot lock the session beside " + tokenFile() + " (" + failure.reason() + ")",
                  "Set ORVANE_ROOT to a writable folder");
  }
}

Failure notSignedIn() {
  return Failure(kNoSession, "not signed in: there is no access token",
                 "Run \"bookstore sign-in\"");
}

void requireResponse(const FailureListener& listener, GraphQLApi::ApiError error,
                     const std::string& url, const std::string& lack) {
  if (base::isSessionRefused(listener.status())) {
    throw Failure(kNoSession, url + " refused the session: it has expired", kRenewSession);
  }
  listener.throwIfAny(url);
  switch (error) {
    case GraphQLApi::Ok:
      return;
    case GraphQLApi::NetworkError:
      // The library reports no number for this error.
      throw Failure(kTransferFailed, "the request to " + url + " failed",
                    "Run the command again with -v to see the reason");
    case GraphQLApi::BadResponse:
      break;
  }
  throw Failure(kNoData, url + " " + lack, std::string(kRenewSession) + "; -v shows the response");
}

void requireTokensSaved(const std::string& what, const std::string& accessToken,
                        const std::string& refreshToken) {
  const GraphQLStorageApi saved;
  if (saved.accessToken() != accessToken || saved.refreshToken() != refreshToken) {
    throw Failure(
        kLocalFailure, what + ", but the token file " + tokenFile() + " was not updated",
        "See the log lines above, and check that its folder is writable and has free space");
  }
}

std::string remainingSession() {
  return GraphQLStorageApi().isLoggedIn() ? "" : "; nobody is signed in now";
}

}  // namespace bookstore
