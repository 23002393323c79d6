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
    throw Failure(kNoSession, "store generation " + std::to_string(generation) + " has no cookies",
                  std::string("Set ") + base::settings::kStoreVersion.name + "=3");
  }
  if (!::isLoggedIn()) {
    throw notSignedIn();
  }
  throw Failure(kNoSession, "the store to which the customer signed in is not in the store list",
                "Run \"bookstore stores --refresh\"");
}

}  // namespace bookstore
