// Any response to any operation: the first byte selects the operation, a second byte '4' makes the
// status 401 instead of 200, and the rest is the body. The only exceptions allowed are JsonCpp's,
// for values of the wrong type.

#include <cstdint>
#include <iterator>
#include <memory>
#include <string>

#include <json/json.h>

#include "fuzz/Require.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"
#include "platform/fake/FakePlatform.h"

namespace {

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

GraphQLStorageApi::StoreInfo makeStore() {
  GraphQLStorageApi::StoreInfo store;
  store.url = "https://store.example/";
  store.apiUrl = "https://store.example/graphql";
  store.storeCode = "en";
  store.providerID = "store";
  return store;
}

using Operation = void (*)(GraphQLApi&, const GraphQLStorageApi::StoreInfo&);

const Operation kOperations[] = {
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo&) { api.getStores(); },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.auth(store, "ada@reader.example", "password");
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.refreshTokens(store, "refresh");
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      bool available = false;
      api.isEmailAvailable(store, "ada@reader.example", &available);
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.createAccount(store, "ada@reader.example", "password", "Ada", "Byron", true);
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.resetPassword(store, "ada@reader.example");
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      GraphQLStorageApi::UserInfo customer;
      api.userInfo(store, &customer);
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.sampleMetadata(store, "MTIz");
    },
    [](GraphQLApi& api, const GraphQLStorageApi::StoreInfo& store) {
      api.samplePriceRefresh(store, "MTIz");
    },
};

// The digits '0' to '8' select the operations in this order; other bytes wrap around.
Operation operationOf(std::uint8_t choice) {
  return kOperations[(choice + 256U - '0') % std::size(kOperations)];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) {
    return -1;
  }
  const long status = data[1] == '4' ? 401 : 200;
  fake::reset();
  fake::platform().http.answer(status, std::string(data + 2, data + size));
  GraphQLApi api(std::make_shared<GraphQLStorageApi>());
  try {
    operationOf(data[0])(api, makeStore());
  } catch (const Json::Exception&) {
  }
  FUZZ_REQUIRE(fake::platform().http.requests.size() == 1);
  return 0;
}
