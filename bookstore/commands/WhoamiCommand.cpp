#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/Session.h"
#include "bookstore/commands/StoreChoice.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

GraphQLStorageApi::UserInfo askForProfile(const Context& context,
                                          const GraphQLStorageApi::StoreInfo& store) {
  const FailureListener listener(context.api);
  GraphQLStorageApi::UserInfo info;
  const auto error = waitFor(context, [&] { return context.api.userInfo(store, &info); });
  requireAnswer(listener, error, store.apiUrl,
                "answered without a customer: the session may have ended");
  return info;
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

}  // namespace bookstore
