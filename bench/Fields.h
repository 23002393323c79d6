// What an operation read, as a list of texts in a fixed order, by which two programs are compared.
// Any thread may call these.

#ifndef BENCH_FIELDS_H_
#define BENCH_FIELDS_H_

#include <string>
#include <vector>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace bench {

using Fields = std::vector<std::string>;

// What a sign-in or a token refresh gives.
struct Session {
  graphql::GraphQLStorageApi::LoginInfo login;
  std::string cacheId;  // from the headers of the answer; empty where it is not asked for
};

// All texts of the record, or of all records.
Fields fieldsOf(const graphql::GraphQLStorageApi::StoreInfoList& stores);
Fields fieldsOf(const Session& session);
Fields fieldsOf(const graphql::GraphQLStorageApi::UserInfo& customer);
Fields fieldsOf(const graphql::GraphQLApi::SampleMetadata& metadata);

}  // namespace bench

#endif  // BENCH_FIELDS_H_
