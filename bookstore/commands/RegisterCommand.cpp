#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/CustomerText.h"
#include "bookstore/commands/Password.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"

namespace bookstore {

void runRegister(Context& context) {
  const Arguments& arguments = context.arguments;
  const auto store = chooseStore(context);
  const std::string email = sendableText(arguments, "--email");
  const std::string firstName = sendableText(arguments, "--first-name");
  const std::string lastName = sendableText(arguments, "--last-name");
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

}  // namespace bookstore
