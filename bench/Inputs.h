// The inputs of both programs: the customer, the product and the store of every measured operation.

#ifndef BENCH_INPUTS_H_
#define BENCH_INPUTS_H_

#include <string>

#include "graphql_api/GraphQLStorageApi.h"

namespace bench {

const char kEmail[] = "reader@bookstore.example";
const char kPassword[] = "an invented password";
const char kUid[] = "MTIzNDU2";
const char kRefreshToken[] = "inventedrefreshtoken000000000000";
// As long as the signed tokens of the store service.
const char kAccessToken[] =
    "inventedheader000000000000000000000000000000.inventedclaims00000000000000000000000000000000000"
    "0000000000000000000000000000.inventedsignature000000000000000000000000000";

// The store of `operation`: the benchmark's server has a separate path for each operation.
inline graphql::GraphQLStorageApi::StoreInfo storeOf(const std::string& operation) {
  graphql::GraphQLStorageApi::StoreInfo store;
  store.url = "https://" GRAPHQL_API_DISCOVERY_HOST "/";
  store.apiUrl = store.url + operation + "/graphql";
  store.langCode = "de";
  store.storeCode = "de_de";
  store.integrationToken = "inventedintegrationtokendede0000";
  store.providerID = "bookstore-de";
  store.currency = "EUR";
  store.status = true;
  return store;
}

}  // namespace bench

#endif  // BENCH_INPUTS_H_
