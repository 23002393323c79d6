// Signs the customer out of the store that the device's files name.

#include "graphql_api/GraphQLStorageApi.h"

int main() {
  graphql::GraphQLStorageApi().logoutOnlyFromStore();
  return 0;
}
