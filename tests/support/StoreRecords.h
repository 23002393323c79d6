// Records of stores to work with.

#ifndef TESTS_SUPPORT_STORERECORDS_H_
#define TESTS_SUPPORT_STORERECORDS_H_

#include <string>

#include "graphql_api/GraphQLStorageApi.h"

using StoreInfo = graphql::GraphQLStorageApi::StoreInfo;
using StoreInfoList = graphql::GraphQLStorageApi::StoreInfoList;

// A store with every member set, told apart by `name`.
inline StoreInfo makeStore(const std::string& name) {
  StoreInfo store;
  store.storeName = "Store " + name;
  store.url = "https://" + name + ".example/";
  store.apiUrl = "https://" + name + ".example/graphql";
  store.language = "Language " + name;
  store.langCode = name;
  store.storeCode = name + "_" + name;
  store.integrationToken = "integration-" + name;
  store.providerID = "provider-" + name;
  store.currency = "EUR";
  store.status = true;
  return store;
}

#endif  // TESTS_SUPPORT_STORERECORDS_H_
