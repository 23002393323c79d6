// Lists the regional stores of the book store, and the one that the customer is signed in to.

#include <iostream>
#include <memory>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

int main() {
  // Loads the stores and the session that an earlier run saved in the device's files.
  auto storage = std::make_shared<graphql::GraphQLStorageApi>();
  graphql::GraphQLApi api(storage);

  bool failed = false;
  api.setErrorCb([&failed](int err, int status) {
    failed = true;
    std::cerr << "The request failed: error " << err << ", HTTP status " << status << "\n";
  });

  // Blocks for the exchange. A response replaces the saved list; a failure leaves it unchanged.
  for (const auto& store : api.getStores()) {
    std::cout << store.storeCode << "  " << store.storeName << "  " << store.url << "\n";
  }

  const auto current = storage->currentStore();
  std::cout << (current.isValid() ? "Signed in to " + current.storeName : "Not signed in") << "\n";
  return failed ? 1 : 0;
}
