// The fields that an operation read, as a list of texts in a fixed order, to compare two programs.
// Safe from any thread.

#ifndef BENCH_FIELDS_H_
#define BENCH_FIELDS_H_

#include <string>
#include <vector>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace bench {

using Fields = std::vector<std::string>;

// The result of a sign-in or a token refresh.
struct Session {
  graphql::GraphQLStorageApi::LoginInfo login;
  std::string cacheId;  // from the response headers; empty if the operation does not read it
};

// All texts of the record, or of all records.
Fields fieldsOf(const graphql::GraphQLStorageApi::StoreInfoList& stores);
Fields fieldsOf(const Session& session);
Fields fieldsOf(const graphql::GraphQLStorageApi::UserInfo& customer);
Fields fieldsOf(const graphql::GraphQLApi::SampleMetadata& metadata);

}  // namespace bench

#endif  // BENCH_FIELDS_H_
