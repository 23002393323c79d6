#include "bookstore/commands/BrowserCookies.h"

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "base/Settings.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/CustomerSession.h"
#include "graphql_api/GraphQLHeader.h"

namespace bookstore {

BrowserCookies browserCookies() {
  BrowserCookies cookies;
  ::getBrowserCookies(&cookies.values, &cookies.url);
  if (!cookies.values.empty()) {
    return cookies;
  }
  const int generation = orvane::utilities::BookStoreVersionProxy::storeVersion(false);
  if (generation != 3) {
    throw Failure(kNoSession,
                  "there are no cookies for store generation " + std::to_string(generation),
                  std::string(base::settings::kStoreVersion.name) + "=3");
  }
  if (!::isLoggedIn()) {
    throw notSignedIn();
  }
  throw Failure(kNoSession, "the store that the customer signed in to is not a known one",
                "bookstore stores --refresh");
}

}  // namespace bookstore
