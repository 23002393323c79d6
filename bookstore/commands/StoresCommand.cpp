#include "bookstore/commands/StoresCommand.h"

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/DeviceFiles.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/terminal/Table.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

using StoreInfo = GraphQLStorageApi::StoreInfo;
using StoreInfoList = GraphQLStorageApi::StoreInfoList;

// The members have the server's names.
Json::Value toJson(const StoreInfo& store) {
  Json::Value value;
  value["storeName"] = store.storeName;
  value["url"] = store.url;
  value["apiUrl"] = store.apiUrl;
  value["language"] = store.language;
  value["langCode"] = store.langCode;
  value["storeCode"] = store.storeCode;
  value["status"] = store.status;
  value["integrationToken"] = store.integrationToken;
  value["providerID"] = store.providerID;
  value["currency"] = store.currency;
  return value;
}

// The records that the file returns: the library drops records without an address when it reads it.
Json::Value keptRecords(const StoreInfoList& stores) {
  Json::Value kept(Json::arrayValue);
  for (const StoreInfo& store : stores) {
    if (store.isValid()) {
      kept.append(toJson(store));
    }
  }
  return kept;
}

// The library does not report whether it could write the file.
void requireSaved(const StoreInfoList& stores) {
  if (keptRecords(GraphQLStorageApi().storesList()) != keptRecords(stores)) {
    throw Failure(
        kLocalFailure,
        "the stores were received, but the file " + storeListFile() + " was not updated",
        "See the log lines above, and check that its folder is writable and has free space");
  }
}

StoreInfoList askForStores(Context& context) {
  const std::string url = context.api.getGraphQLUrl();
  StoreInfoList stores = send(context, url, [&] { return context.api.getStores(); });
  requireSaved(stores);
  if (stores.empty()) {
    // The library reports both in the same way.
    throw Failure(kNoData,
                  url + " returned no list of stores, or a list without an open store; " +
                      storeListFile() + " is empty now",
                  "Run the command again with -v to see the response");
  }
  return stores;
}

StoreInfoList readStores(const Context& context) {
  StoreInfoList stores = context.storage->storesList();
  if (stores.empty()) {
    throw noStoreKnown();
  }
  return stores;
}

// The position of the current store; the size of the list when there is none.
std::size_t currentPosition(const GraphQLStorageApi& storage) {
  return storage.currentStore().isValid() ? static_cast<std::size_t>(storage.currentStoreIndex())
                                          : storage.storesList().size();
}

Json::Value documentOf(const Context& context, const StoreInfoList& stores) {
  Json::Value document;
  document["stores"] = Json::arrayValue;
  const std::size_t current = currentPosition(*context.storage);
  for (std::size_t position = 0; position < stores.size(); ++position) {
    Json::Value value = toJson(stores[position]);
    value["integrationToken"] = context.output.secret(stores[position].integrationToken);
    value["current"] = position == current;
    document["stores"].append(value);
  }
  return document;
}

Table tableOf(const GraphQLStorageApi& storage, const StoreInfoList& stores) {
  Table table({" ", "ID", "CODE", "NAME", "LANGUAGE", "CURRENCY", "ADDRESS"});
  const std::size_t current = currentPosition(storage);
  for (std::size_t position = 0; position < stores.size(); ++position) {
    const StoreInfo& store = stores[position];
    table.addRow({position == current ? "*" : " ", store.providerID, store.storeCode,
                  store.storeName, store.language, store.currency, store.url});
  }
  return table;
}

}  // namespace

void runStores(Context& context) {
  const StoreInfoList stores =
      context.arguments.has("--refresh") ? askForStores(context) : readStores(context);
  context.output.printResult(tableOf(*context.storage, stores), documentOf(context, stores));
}

}  // namespace bookstore
