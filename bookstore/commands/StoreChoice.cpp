#include "bookstore/commands/StoreChoice.h"

#include <algorithm>
#include <iterator>

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

using StoreInfo = GraphQLStorageApi::StoreInfo;
using StoreInfoList = GraphQLStorageApi::StoreInfoList;

std::string listOf(const StoreInfoList& stores) {
  std::string list;
  for (const StoreInfo& store : stores) {
    list += (list.empty() ? "" : ", ") + store.providerID + " (" + store.storeCode + ")";
  }
  return list;
}

StoreInfoList storesWith(const StoreInfoList& stores, std::string StoreInfo::*member,
                         const std::string& text) {
  StoreInfoList found;
  std::copy_if(stores.begin(), stores.end(), std::back_inserter(found),
               [&](const StoreInfo& store) { return store.*member == text; });
  return found;
}

}  // namespace

Failure noStoreKnown() {
  return Failure(kNoSession, "the store list is empty", "Run \"bookstore stores --refresh\"");
}

StoreInfo findStore(const StoreInfoList& stores, const std::string& id) {
  if (stores.empty()) {
    throw noStoreKnown();
  }
  StoreInfoList found = storesWith(stores, &StoreInfo::providerID, id);
  if (found.empty()) {
    found = storesWith(stores, &StoreInfo::storeCode, id);
  }
  if (found.empty()) {
    throw Failure(kNoSession, "no store has the ID or the code \"" + id + "\"",
                  "Use one of " + listOf(stores));
  }
  if (found.size() > 1) {
    throw Failure(kUsage, "\"" + id + "\" matches more than one store",
                  "Use the ID of one of " + listOf(found));
  }
  return found.front();
}

StoreInfo chooseStore(const Context& context) {
  const StoreInfoList stores = context.storage->storesList();
  if (context.arguments.has("--store")) {
    return findStore(stores, context.arguments.text("--store"));
  }
  StoreInfo current = context.storage->currentStore();
  if (current.isValid()) {
    return current;
  }
  if (stores.empty()) {
    throw noStoreKnown();
  }
  if (stores.size() > 1) {
    throw Failure(kUsage, "there are several stores, and none of them is the current store",
                  "Add --store with one of " + listOf(stores));
  }
  return stores.front();
}

std::string nameOf(const StoreInfo& store) {
  return store.storeName + " (" + store.providerID + ")";
}

}  // namespace bookstore
