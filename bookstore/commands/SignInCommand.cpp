#include "bookstore/commands/SignInCommand.h"

#include <json/json.h>

#include "base/HttpResult.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/CustomerSession.h"
#include "bookstore/commands/Password.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/commands/Validation.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

Failure refusal(const std::string& what) {
  return Failure(
      kStoreRefused, what + remainingSession(),
      "Check the email address and the password; if they are correct, run \"bookstore stores "
      "--refresh\"");
}

// For this status the library reports only a code, if the response has one.
Failure unauthorized(const std::string& url, int code) {
  return refusal(url + " refused the sign-in with HTTP status 401" +
                 (code == 0 ? "" : " and code " + std::to_string(code)));
}

Failure refused(const std::string& url, const std::string& message) {
  return refusal(withServerWords(url + " refused the sign-in", message));
}

GraphQLStorageApi::LoginInfo signIn(const Context& context,
                                    const GraphQLStorageApi::StoreInfo& store,
                                    const std::string& email, const std::string& password) {
  const FailureListener listener(context.api);
  GraphQLStorageApi::LoginInfo login =
      waitFor(context, [&] { return context.api.auth(store, email, password); });
  if (listener.status() == base::kHttpUnauthorized) {
    throw unauthorized(store.apiUrl, login.errorInfo.error);
  }
  try {
    listener.throwIfAny(store.apiUrl);
  } catch (const Failure& failure) {
    throw Failure(failure.code(), failure.what() + remainingSession(), failure.remedy());
  }
  if (login.accessToken.empty()) {  // an `error` of 0 does not mean success
    throw refused(store.apiUrl, login.errorInfo.message);
  }
  return login;
}

}  // namespace

void runSignIn(Context& context) {
  const auto store = chooseStore(context);
  const std::string email = utf8Option(context.arguments, "--email");
  const std::string password = readPassword(context.arguments, PasswordKind::Known);

  const SessionLock lock(context);
  const auto login = signIn(context, store, email, password);
  requireTokensSaved(store.apiUrl + " signed " + email + " in", login.accessToken,
                     login.refreshToken);

  Json::Value document;
  document["email"] = email;
  document["store"] = store.providerID;
  context.output.printResult("Signed in as " + email + " at " + nameOf(store), document);
}

}  // namespace bookstore
