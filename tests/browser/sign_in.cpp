// Discovers the stores, registers a customer at one of them and signs the customer in.
// Usage: sign_in STORE-CODE, with email, password, first and last name as lines of standard input

#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

struct Customer {
  std::string email;
  std::string password;
  std::string firstname;
  std::string lastname;
};

Customer readCustomer(std::istream& in) {
  Customer customer;
  for (std::string* text :
       {&customer.email, &customer.password, &customer.firstname, &customer.lastname}) {
    if (!std::getline(in, *text)) {
      throw std::runtime_error("standard input has less than four lines");
    }
  }
  return customer;
}

GraphQLStorageApi::StoreInfo discover(GraphQLApi& api, const std::string& storeCode) {
  const auto stores = api.getStores();
  const auto found = std::find_if(stores.begin(), stores.end(),
                                  [&](const auto& store) { return store.storeCode == storeCode; });
  if (found == stores.end()) {
    throw std::runtime_error("no store " + storeCode + " among the " +
                             std::to_string(stores.size()) + " discovered");
  }
  return *found;
}

void signUpAndIn(const std::string& storeCode, const Customer& customer) {
  GraphQLApi api(std::make_shared<GraphQLStorageApi>());
  const auto store = discover(api, storeCode);
  const auto refusal = api.createAccount(store, customer.email, customer.password,
                                         customer.firstname, customer.lastname, false);
  if (refusal.error != 0) {
    throw std::runtime_error("not registered: " + refusal.message);
  }
  const auto login = api.auth(store, customer.email, customer.password);
  if (login.accessToken.empty()) {
    throw std::runtime_error("not signed in: " + login.errorInfo.message);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: sign_in STORE-CODE\n";
    return 2;
  }
  try {
    signUpAndIn(arguments[1], readCustomer(std::cin));
  } catch (const std::exception& error) {
    std::cerr << "sign_in: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
