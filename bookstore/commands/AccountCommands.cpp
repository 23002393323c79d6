#include "bookstore/commands/AccountCommands.h"

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/Password.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/commands/Validation.h"

using graphql::GraphQLApi;

namespace bookstore {

void runRegister(Context& context) {
  const Arguments& arguments = context.arguments;
  const auto store = chooseStore(context);
  const std::string email = utf8Option(arguments, "--email");
  const std::string firstName = utf8Option(arguments, "--first-name");
  const std::string lastName = utf8Option(arguments, "--last-name");
  const std::string password = readPassword(arguments, PasswordKind::New);

  throwIfFailed(send(context, store.apiUrl,
                     [&] {
                       return context.api.createAccount(store, email, password, firstName, lastName,
                                                        arguments.has("--subscribe"));
                     }),
                store.apiUrl);

  Json::Value document;
  document["email"] = email;
  document["store"] = store.providerID;
  context.output.printResult("Registered " + email + " at " + nameOf(store), document);
}

void runEmailAvailable(Context& context) {
  const auto store = chooseStore(context);
  const std::string email = utf8Option(context.arguments, "--email");
  bool isAvailable = false;
  const auto error = send(context, store.apiUrl,
                          [&] { return context.api.isEmailAvailable(store, email, &isAvailable); });
  if (error != GraphQLApi::Ok) {
    // The library reports both in the same way.
    throw Failure(kNoData,
                  store.apiUrl +
                      " returned an HTTP status other than 200, or a response"
                      " without the expected data",
                  "Run the command again with -v to see the response");
  }

  Json::Value document;
  document["email"] = email;
  document["available"] = isAvailable;
  document["store"] = store.providerID;
  context.output.printResult(
      email + (isAvailable ? " is available at " : " is already registered at ") + nameOf(store),
      document);
}

void runResetPassword(Context& context) {
  const auto store = chooseStore(context);
  const std::string email = utf8Option(context.arguments, "--email");
  throwIfFailed(
      send(context, store.apiUrl, [&] { return context.api.resetPassword(store, email); }),
      store.apiUrl);

  Json::Value document;
  document["email"] = email;
  document["store"] = store.providerID;
  // Not "has emailed": the library reports a refusal without a message as a success.
  context.output.printResult(nameOf(store) + " was asked to email a link to " + email, document);
}

}  // namespace bookstore
