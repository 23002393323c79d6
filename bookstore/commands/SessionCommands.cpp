#include "bookstore/commands/SessionCommands.h"

#include <json/json.h>

#include "base/HttpResult.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/CustomerSession.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

GraphQLStorageApi::UserInfo askForProfile(const Context& context,
                                          const GraphQLStorageApi::StoreInfo& store) {
  const FailureListener listener(context.api);
  GraphQLStorageApi::UserInfo info;
  const auto error = waitFor(context, [&] { return context.api.userInfo(store, &info); });
  requireResponse(listener, error, store.apiUrl,
                  "returned no customer: the session may have expired");
  return info;
}

std::string storedRefreshToken(const GraphQLStorageApi& storage) {
  std::string token = storage.refreshToken();
  if (token.empty()) {
    throw Failure(kNoSession, "not signed in: there is no refresh token",
                  "Run \"bookstore sign-in\"");
  }
  return token;
}

Failure refused(const std::string& url, const std::string& message) {
  return Failure(
      kStoreRefused,
      withServerWords(url + " refused the refresh", message) + "; the stored tokens are removed",
      "Run \"bookstore sign-in\"");
}

void refresh(const Context& context, const GraphQLStorageApi::StoreInfo& store,
             const std::string& token) {
  const FailureListener listener(context.api);
  const auto login = waitFor(context, [&] { return context.api.refreshTokens(store, token); });
  if (listener.status() == base::kHttpUnauthorized) {
    throw Failure(kStoreRefused,
                  store.apiUrl + " refused the refresh with HTTP status 401; " +
                      "the stored tokens are unchanged",
                  "Run \"bookstore sign-in\"");
  }
  listener.throwIfAny(store.apiUrl);
  if (login.accessToken.empty()) {
    throw refused(store.apiUrl, login.errorInfo.message);
  }
  requireTokensSaved(store.apiUrl + " returned new tokens", login.accessToken, login.refreshToken);
}

}  // namespace

void runWhoami(Context& context) {
  if (!context.storage->isLoggedIn()) {
    throw notSignedIn();
  }
  const auto store = chooseStore(context);
  const auto info = askForProfile(context, store);

  Json::Value document;
  document["email"] = info.email;
  document["firstName"] = info.firstname;
  document["lastName"] = info.lastname;
  document["store"] = store.providerID;
  context.output.printResult(
      info.firstname + " " + info.lastname + " <" + info.email + "> at " + nameOf(store), document);
}

// A refresh token works once. Of two processes that read the same token, the second finds the
// tokens that the first has saved.
void runRefresh(Context& context) {
  const std::string token = storedRefreshToken(*context.storage);
  const SessionLock lock(context);
  context.storage->reload();
  const bool isOurs = storedRefreshToken(*context.storage) == token;
  if (isOurs) {
    refresh(context, chooseStore(context), token);
  }

  Json::Value document;
  document["refreshed"] = isOurs;
  context.output.printResult(
      isOurs ? "Refreshed the tokens" : "Another process has refreshed the tokens", document);
}

void runSignOut(Context& context) {
  const SessionLock lock(context);
  context.storage->reload();  // another process may have changed it before the lock was free
  const bool wasSignedIn = context.storage->isLoggedIn();
  context.storage->logoutOnlyFromStore();
  requireTokensSaved("the tokens were removed", "", "");

  Json::Value document;
  document["wasSignedIn"] = wasSignedIn;
  context.output.printResult(wasSignedIn ? "Signed out" : "Nobody was signed in", document);
}

}  // namespace bookstore
