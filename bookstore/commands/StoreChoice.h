// Which of the known stores a command works with. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_STORECHOICE_H_
#define BOOKSTORE_COMMANDS_STORECHOICE_H_

#include <string>

#include "bookstore/Command.h"
#include "bookstore/Failure.h"

namespace bookstore {

// The store list is empty where a store is needed.
Failure noStoreKnown();

// The one store whose providerID is `id` or, where there is none, whose storeCode is. Throws
// Failure when no store is meant, or more than one.
graphql::GraphQLStorageApi::StoreInfo findStore(
    const graphql::GraphQLStorageApi::StoreInfoList& stores, const std::string& id);

// The store that --store names; without that option the current store, or else the only one known.
// Throws Failure when that gives none. For commands whose row has --store.
graphql::GraphQLStorageApi::StoreInfo chooseStore(const Context& context);

// The store's name and ID, for people.
std::string nameOf(const graphql::GraphQLStorageApi::StoreInfo& store);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_STORECHOICE_H_
