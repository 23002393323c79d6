// The store that a command uses. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_STORECHOICE_H_
#define BOOKSTORE_COMMANDS_STORECHOICE_H_

#include <string>

#include "bookstore/Command.h"
#include "bookstore/Failure.h"

namespace bookstore {

// The failure of a command that needs a store when the store list is empty.
Failure noStoreKnown();

// The store whose providerID is `id` or, if there is none, whose storeCode is `id`. Throws Failure
// for no store and for more than one.
graphql::GraphQLStorageApi::StoreInfo findStore(
    const graphql::GraphQLStorageApi::StoreInfoList& stores, const std::string& id);

// The store that --store names; without that option, the current store or else the only store of
// the list. Throws Failure when there is none. For commands whose row has --store.
graphql::GraphQLStorageApi::StoreInfo chooseStore(const Context& context);

// The store's name and ID, for people.
std::string nameOf(const graphql::GraphQLStorageApi::StoreInfo& store);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_STORECHOICE_H_
