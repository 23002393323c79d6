#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/Failure.h"
#include "bookstore/Request.h"
#include "bookstore/Session.h"
#include "bookstore/StoreChoice.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

constexpr int kUnauthorized = 401;
constexpr int kForbidden = 403;
const char kHowToGoOn[] = "bookstore refresh, or sign in again";

GraphQLStorageApi::UserInfo askForProfile(const Context& context,
                                          const GraphQLStorageApi::StoreInfo& store) {
  const FailureListener listener(context.api);
  GraphQLStorageApi::UserInfo info;
  const auto error = waitFor(context, [&] { return context.api.userInfo(store, &info); });
  if (listener.heardOfStatus(kUnauthorized) || listener.heardOfStatus(kForbidden)) {
    throw Failure(kNoSession, store.apiUrl + " says that the session has ended", kHowToGoOn);
  }
  listener.throwIfAny(store.apiUrl);
  switch (error) {
    case GraphQLApi::Ok:
      return info;
    case GraphQLApi::NetworkError:
      // The library reports no number for this one.
      throw Failure(kTransferFailed, "the transfer to " + store.apiUrl + " failed",
                    "run it again with -v to see why");
    case GraphQLApi::BadResponse:
      break;
  }
  throw Failure(kNoData, store.apiUrl + " answered without a customer: the session may have ended",
                std::string(kHowToGoOn) + "; -v shows the answer");
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
