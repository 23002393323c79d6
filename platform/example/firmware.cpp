// A minimal firmware: lists the regional stores, and says who is signed in at which of them. With a
// store code and an email address as arguments, and the password on standard input, it signs that
// customer in first.

#include <iostream>
#include <memory>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;
using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::CfgWrapper;

namespace {

// Without the device's own token, the library ignores the session in the file. Your account service
// gets a real token when the device is registered.
void registerDevice() {
  const std::string key = BookStoreVersionProxy::configKeySacAccessToken();
  CfgWrapper session("/mnt/ext1/system/config/bookstore.cfg", CfgWrapper::Write);
  if (!session.readIfExists<orvane::utilities::CfgSecret>(key)) {
    WriteSecret(session.handle, key.c_str(), "registered");
    session.saveAndClose();
  }
}

bool signIn(GraphQLApi& api, const GraphQLStorageApi& storage, const std::string& storeCode,
            const std::string& email) {
  std::string password;
  std::getline(std::cin, password);
  for (const auto& store : storage.storesList()) {
    if (store.storeCode == storeCode) {
      const auto login = api.auth(store, email, password);
      std::cerr << login.errorInfo.message;
      return !login.accessToken.empty();
    }
  }
  std::cerr << "There is no store " << storeCode << "\n";
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  registerDevice();  // before the state is loaded
  auto storage = std::make_shared<GraphQLStorageApi>();
  GraphQLApi api(storage);
  api.setErrorCb([](int err, int status) {
    std::cerr << "The request failed: error " << err << ", HTTP status " << status << "\n";
  });

  api.getStores();
  for (const auto& store : storage->storesList()) {
    std::cout << store.storeCode << "  " << store.storeName << "\n";
  }
  if (count == 3 && !signIn(api, *storage, arguments[1], arguments[2])) {
    return 1;
  }
  if (!storage->isLoggedIn()) {
    std::cout << "Not signed in\n";
    return 0;
  }
  GraphQLStorageApi::UserInfo customer;
  const auto result = api.userInfo(storage->currentStore(), &customer);
  std::cout << "Signed in to " << storage->currentStore().storeName << ": " << customer.email
            << "\n";
  return result == GraphQLApi::Ok ? 0 : 1;
}
