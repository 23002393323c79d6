#include <string>

#include <json/json.h>
#include <orvane/utilities/BookStoreVersionProxy.h>

#include "bookstore/Commands.h"
#include "bookstore/DeviceFiles.h"
#include "bookstore/Table.h"
#include "graphql_api/GraphQLHeader.h"
#include "host/Settings.h"

using graphql::GraphQLStorageApi;
using orvane::utilities::BookStoreVersionProxy;

namespace bookstore {

namespace {

struct Status {
  std::string root;
  std::string storeListFile;
  bool hasStoreListFile;
  std::string tokenFile;
  bool hasTokenFile;
  std::size_t storeCount;
  GraphQLStorageApi::StoreInfo currentStore;
  bool isSignedIn;
  int storeGeneration;
  std::string discoveryUrl;
};

Status look(Context& context) {
  // The identity is there from the first header build on.
  graphql::graphQLHeaders(context.storage, {}, GraphQLStorageApi::None);
  Status status;
  status.root = host::rootFolder();
  status.storeListFile = storeListFile();
  status.hasStoreListFile = fileExists(status.storeListFile);
  status.tokenFile = tokenFile();
  status.hasTokenFile = fileExists(status.tokenFile);
  status.storeCount = context.storage->storesList().size();
  status.currentStore = context.storage->currentStore();
  status.isSignedIn = context.storage->isLoggedIn();
  status.storeGeneration = BookStoreVersionProxy::storeVersion(false);
  status.discoveryUrl = context.api.getGraphQLUrl();
  return status;
}

Json::Value fileJson(const std::string& path, bool exists) {
  Json::Value value;
  value["path"] = path;
  value["exists"] = exists;
  return value;
}

void printForPrograms(Output& output, const Status& status) {
  Json::Value document;
  document["root"] = status.root;
  document["storeListFile"] = fileJson(status.storeListFile, status.hasStoreListFile);
  document["tokenFile"] = fileJson(status.tokenFile, status.hasTokenFile);
  document["storeCount"] = static_cast<Json::UInt64>(status.storeCount);
  document["currentStore"] =
      status.currentStore.isValid() ? Json::Value(status.currentStore.providerID) : Json::Value();
  document["signedIn"] = status.isSignedIn;
  document["storeGeneration"] = status.storeGeneration;
  document["discoveryUrl"] = status.discoveryUrl;
  document["device"]["model"] = deviceModel;
  document["device"]["softwareVersion"] = softwareVersion;
  document["device"]["serialNumber"] = serialNumber;
  document["device"]["userAgent"] = userAgent;
  output.printJson(document);
}

std::string fileText(const std::string& path, bool exists) {
  return path + (exists ? "" : " (missing)");
}

std::string storeText(const GraphQLStorageApi::StoreInfo& store) {
  return store.isValid() ? store.storeName + " (" + store.providerID + ")" : "none";
}

void printForPeople(Output& output, const Status& status) {
  Table table;
  table.addRow({"Root folder", status.root});
  table.addRow({"Store list file", fileText(status.storeListFile, status.hasStoreListFile)});
  table.addRow({"Token file", fileText(status.tokenFile, status.hasTokenFile)});
  table.addRow({"Stores", std::to_string(status.storeCount)});
  table.addRow({"Current store", storeText(status.currentStore)});
  table.addRow({"Signed in", status.isSignedIn ? "yes" : "no"});
  table.addRow({"Store generation", std::to_string(status.storeGeneration)});
  table.addRow({"Discovery", status.discoveryUrl});
  table.addRow({"Device model", deviceModel});
  table.addRow({"Software version", softwareVersion});
  table.addRow({"Serial number", serialNumber});
  table.addRow({"User agent", userAgent});
  output.print(table);
}

}  // namespace

void runStatus(Context& context) {
  const Status status = look(context);
  if (context.output.isJson()) {
    printForPrograms(context.output, status);
  } else {
    printForPeople(context.output, status);
  }
}

}  // namespace bookstore
