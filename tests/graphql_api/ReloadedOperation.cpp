// An operation, for a program that loads the library by way of this module and unloads it again.

#include <memory>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLHeader.h"

extern "C" {

// Stores the number of the stores that the operation found, and the user agent at that time, which
// lives as long as the library.
void runOperation(int* stores, const char** agent) {
  *stores = static_cast<int>(graphql::GraphQLApi(nullptr).getStores().size());
  *agent = userAgent.c_str();
}

}  // extern "C"
