#include <json/json.h>

#include "base/HttpResult.h"
#include "bookstore/Commands.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/Session.h"
#include "bookstore/commands/StoreChoice.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

std::string tokenToSpend(const GraphQLStorageApi& storage) {
  std::string token = storage.refreshToken();
  if (token.empty()) {
    throw Failure(kNoSession, "not signed in: there is no refresh token", "bookstore sign-in");
  }
  return token;
}

Failure refused(const std::string& url, const std::string& message) {
  return Failure(kStoreRefused,
                 url + " refused the refresh" +
                     (message.empty() ? ", and gave no reason" : ": " + message) +
                     "; the stored tokens are emptied",
                 "bookstore sign-in");
}

void refresh(const Context& context, const GraphQLStorageApi::StoreInfo& store,
             const std::string& token) {
  const FailureListener listener(context.api);
  const auto login = waitFor(context, [&] { return context.api.refreshTokens(store, token); });
  if (listener.status() == base::kHttpUnauthorized) {
    throw Failure(kStoreRefused,
                  store.apiUrl + " refused the refresh with HTTP status 401; " +
                      "the stored tokens stay as they are",
                  "bookstore sign-in");
  }
  listener.throwIfAny(store.apiUrl);
  if (login.accessToken.empty()) {
    throw refused(store.apiUrl, login.errorInfo.message);
  }
  requireTokensSaved(store.apiUrl + " gave new tokens", login.accessToken, login.refreshToken);
}

}  // namespace

// A refresh token can be spent once: of two processes that read the same one, the second finds the
// tokens of the first.
void runRefresh(Context& context) {
  const std::string token = tokenToSpend(*context.storage);
  const SessionLock lock(context);
  context.storage->reload();
  const bool isOurs = tokenToSpend(*context.storage) == token;
  if (isOurs) {
    refresh(context, chooseStore(context), token);
  }

  Json::Value document;
  document["refreshed"] = isOurs;
  context.output.printResult(
      isOurs ? "Refreshed the tokens" : "Another process has refreshed the tokens meanwhile",
      document);
}

}  // namespace bookstore
