#include "bookstore/commands/StatusCommand.h"

#include <chrono>
#include <optional>
#include <string>

#include <json/json.h>
#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>

#include "base/DevicePaths.h"
#include "base/Settings.h"
#include "bookstore/commands/DeviceFiles.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/terminal/Table.h"
#include "graphql_api/GraphQLHeader.h"

using graphql::GraphQLStorageApi;
using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;

namespace bookstore {

namespace {

struct Status {
  std::string root;
  std::string storeListFile;
  bool hasStoreListFile;
  std::string tokenFile;
  bool hasTokenFile;
  std::optional<std::chrono::seconds> sinceTokenFileChanged;  // none without that file
  std::size_t storeCount;
  GraphQLStorageApi::StoreInfo currentStore;
  bool isSignedIn;
  std::string tokenLifetime;  // as the store reported it; empty if it reported none
  int storeGeneration;
  std::string discoveryUrl;
};

// The library stores this text, but has no function that returns it.
std::string tokenLifetime() {
  const CfgWrapper file(base::kTokenPath, CfgWrapper::Read);
  return file.read<CfgSecret>(BookStoreVersionProxy::configKeyExpirationToken(), CfgSecret());
}

Status look(Context& context) {
  // The library reads the identity when it first builds headers.
  graphql::graphQLHeaders(context.storage, {}, GraphQLStorageApi::None);
  Status status;
  status.root = base::rootFolder();
  status.storeListFile = storeListFile();
  status.hasStoreListFile = fileExists(status.storeListFile);
  status.tokenFile = tokenFile();
  status.hasTokenFile = fileExists(status.tokenFile);
  if (status.hasTokenFile) {
    status.sinceTokenFileChanged = timeSinceChange(status.tokenFile);
  }
  status.storeCount = context.storage->storesList().size();
  status.currentStore = context.storage->currentStore();
  status.isSignedIn = context.storage->isLoggedIn();
  status.tokenLifetime = tokenLifetime();
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

Json::Value documentOf(const Status& status) {
  Json::Value document;
  document["root"] = status.root;
  document["storeListFile"] = fileJson(status.storeListFile, status.hasStoreListFile);
  document["tokenFile"] = fileJson(status.tokenFile, status.hasTokenFile);
  document["storeCount"] = static_cast<Json::UInt64>(status.storeCount);
  document["currentStore"] =
      status.currentStore.isValid() ? Json::Value(status.currentStore.providerID) : Json::Value();
  document["signedIn"] = status.isSignedIn;
  document["tokenLifetime"] = status.tokenLifetime;
  document["secondsSinceTokenFileChanged"] =
      status.sinceTokenFileChanged
          ? Json::Value(static_cast<Json::Int64>(status.sinceTokenFileChanged->count()))
          : Json::Value();
  document["storeGeneration"] = status.storeGeneration;
  document["discoveryUrl"] = status.discoveryUrl;
  document["device"]["model"] = deviceModel;
  document["device"]["softwareVersion"] = softwareVersion;
  document["device"]["serialNumber"] = serialNumber;
  document["device"]["userAgent"] = userAgent;
  return document;
}

std::string fileText(const std::string& path, bool exists) {
  return path + (exists ? "" : " (missing)");
}

std::string storeText(const GraphQLStorageApi::StoreInfo& store) {
  return store.isValid() ? nameOf(store) : "none";
}

std::string lifetimeText(const std::string& lifetime) {
  return lifetime.empty() ? "unknown" : lifetime + " (in seconds, as the store reported it)";
}

// The time at which the tokens were received is not stored; they are at least as old as this.
std::string sinceText(const std::optional<std::chrono::seconds>& since) {
  return since ? std::to_string(since->count()) + " s ago" : "never";
}

Table tableOf(const Status& status) {
  Table table;
  table.addRow({"Root folder", status.root});
  table.addRow({"Store list file", fileText(status.storeListFile, status.hasStoreListFile)});
  table.addRow({"Token file", fileText(status.tokenFile, status.hasTokenFile)});
  table.addRow({"Stores", std::to_string(status.storeCount)});
  table.addRow({"Current store", storeText(status.currentStore)});
  table.addRow({"Signed in", status.isSignedIn ? "yes" : "no"});
  table.addRow({"Token lifetime", lifetimeText(status.tokenLifetime)});
  table.addRow({"Token file changed", sinceText(status.sinceTokenFileChanged)});
  table.addRow({"Store generation", std::to_string(status.storeGeneration)});
  table.addRow({"Discovery", status.discoveryUrl});
  table.addRow({"Device model", deviceModel});
  table.addRow({"Software version", softwareVersion});
  table.addRow({"Serial number", serialNumber});
  table.addRow({"User agent", userAgent});
  return table;
}

}  // namespace

void runStatus(Context& context) {
  const Status status = look(context);
  context.output.printResult(tableOf(status), documentOf(status));
}

}  // namespace bookstore
