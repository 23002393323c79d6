// Finds the regional stores of the book store and says which of them the customer is signed in to.

#include <iostream>
#include <memory>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

int main() {
  // Loads the stores and the session that an earlier run left in the device's files.
  auto storage = std::make_shared<graphql::GraphQLStorageApi>();
  graphql::GraphQLApi api(storage);

  bool failed = false;
  api.setErrorCb([&failed](int err, int status) {
    failed = true;
    std::cerr << "The store was not reached: transfer " << err << ", status " << status << "\n";
  });

  // Blocks for the transfer; an answer replaces the stored list, a failure leaves it.
  for (const auto& store : api.getStores()) {
    std::cout << store.storeCode << "  " << store.storeName << "  " << store.url << "\n";
  }

  const auto current = storage->currentStore();
  std::cout << (current.isValid() ? "Signed in to " + current.storeName : "Not signed in") << "\n";
  return failed ? 1 : 0;
}
