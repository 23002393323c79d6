#include "bookstore/commands/HeadersCommand.h"

#include <map>
#include <string>

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/terminal/Table.h"
#include "graphql_api/GraphQLHeader.h"

using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

using StoreInfo = GraphQLStorageApi::StoreInfo;

// The command's row in the table allows only these names.
GraphQLStorageApi::TokenType tokenTypeOf(const std::string& name) {
  static const std::map<std::string, GraphQLStorageApi::TokenType> types = {
      {"none", GraphQLStorageApi::None},
      {"integration", GraphQLStorageApi::Integration},
      {"customer", GraphQLStorageApi::Customer},
      {"refresh", GraphQLStorageApi::CustomerRefresh},
  };
  return types.at(name);
}

// The library omits the header of a missing credential: the request would have another type.
void requireCredentials(const GraphQLStorageApi& storage, const StoreInfo& store,
                        GraphQLStorageApi::TokenType type) {
  const std::string remedy = "Run \"bookstore sign-in\", or use --type none or integration";
  switch (type) {
    case GraphQLStorageApi::None:
      return;
    case GraphQLStorageApi::Integration:
      if (store.integrationToken.empty()) {
        throw Failure(kNoSession, "the store " + store.providerID + " has no integration token",
                      "Run \"bookstore stores --refresh\", or use --type none");
      }
      return;
    case GraphQLStorageApi::CustomerRefresh:
      if (storage.refreshToken().empty()) {
        throw Failure(kNoSession, "not signed in: there is no refresh token", remedy);
      }
      [[fallthrough]];
    case GraphQLStorageApi::Customer:
      if (storage.accessToken().empty()) {
        throw Failure(kNoSession, "not signed in: there is no access token", remedy);
      }
      return;
  }
}

// Whether a value is a secret shows in the name of its header.
std::string shownValue(const Output& output, const std::string& name, const std::string& value) {
  const std::string prefix = name + ": ";
  return output.withoutSecrets(prefix + value).substr(prefix.size());
}

}  // namespace

void runHeaders(Context& context) {
  const StoreInfo store =
      findStore(context.storage->storesList(), context.arguments.text("--store"));
  const GraphQLStorageApi::TokenType type = tokenTypeOf(context.arguments.text("--type"));
  requireCredentials(*context.storage, store, type);

  Table table({"HEADER", "VALUE"});
  Json::Value document;
  for (const auto& [name, value] : graphql::graphQLHeaders(context.storage, store, type)) {
    const std::string shown = shownValue(context.output, name, value);
    table.addRow({name, shown});
    document["headers"][name] = shown;
  }
  document["store"] = store.providerID;
  document["type"] = context.arguments.text("--type");
  context.output.printResult(table, document);
}

}  // namespace bookstore
