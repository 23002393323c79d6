#include "bookstore/commands/SampleDetailsCommands.h"

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/CustomerSession.h"
#include "bookstore/commands/Request.h"
#include "bookstore/commands/StoreChoice.h"
#include "bookstore/commands/Validation.h"
#include "bookstore/terminal/Table.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace bookstore {

namespace {

using Metadata = GraphQLApi::SampleMetadata;
using Operation = Metadata (GraphQLApi::*)(const GraphQLStorageApi::StoreInfo&, const std::string&);

Metadata lookUp(const Context& context, const GraphQLStorageApi::StoreInfo& store,
                Operation operation) {
  const std::string bookId = validBookId(context.arguments);
  if (!context.storage->isLoggedIn()) {
    throw notSignedIn();
  }
  const FailureListener listener(context.api);
  Metadata metadata = waitFor(context, [&] { return (context.api.*operation)(store, bookId); });
  requireResponse(listener, metadata.error, store.apiUrl,
                  metadata.uid.empty()
                      ? "returned no book: the store does not know it, or the session has expired"
                      : "returned another book, " + metadata.uid);
  return metadata;
}

void addPriceRows(Table* table, const Metadata& metadata) {
  table->addRow({"Price", metadata.price});
  if (!metadata.oldPrice.empty()) {
    table->addRow({"Regular price", metadata.oldPrice});
  }
}

Json::Value priceDocument(const GraphQLStorageApi::StoreInfo& store, const Metadata& metadata) {
  Json::Value document;
  document["uid"] = metadata.uid;
  document["price"] = metadata.price;
  document["oldPrice"] = metadata.oldPrice;
  document["store"] = store.providerID;
  return document;
}

}  // namespace

void runSampleInfo(Context& context) {
  const auto store = chooseStore(context);
  const Metadata metadata = lookUp(context, store, &GraphQLApi::sampleMetadata);

  Table table;
  table.addRow({"Book", metadata.uid});
  table.addRow({"Title", metadata.name});
  table.addRow({"Author", metadata.author});
  addPriceRows(&table, metadata);
  table.addRow({"Picture", metadata.thumbnailUrl});
  table.addRow({"Store", nameOf(store)});
  Json::Value document = priceDocument(store, metadata);
  document["apiUrl"] = metadata.apiUrl;
  document["name"] = metadata.name;
  document["author"] = metadata.author;
  document["thumbnailUrl"] = metadata.thumbnailUrl;
  context.output.printResult(table, document);
}

void runSamplePrice(Context& context) {
  const auto store = chooseStore(context);
  const Metadata metadata = lookUp(context, store, &GraphQLApi::samplePriceRefresh);

  Table table;
  table.addRow({"Book", metadata.uid});
  addPriceRows(&table, metadata);
  context.output.printResult(table, priceDocument(store, metadata));
}

}  // namespace bookstore
