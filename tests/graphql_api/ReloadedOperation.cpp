// An operation, for a program that loads and unloads the library through this module.

#include <memory>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLHeader.h"

extern "C" {

// Stores the number of stores that the operation found, and the user agent, which is valid as long
// as the library is loaded.
void runOperation(int* stores, const char** agent) {
  *stores = static_cast<int>(graphql::GraphQLApi(nullptr).getStores().size());
  *agent = userAgent.c_str();
}

}  // extern "C"
