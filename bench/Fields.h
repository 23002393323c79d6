// What an operation read, as a list of texts in a fixed order, by which two programs are compared.
// Any thread may call these.

#ifndef BENCH_FIELDS_H_
#define BENCH_FIELDS_H_

#include <string>
#include <vector>

#include "graphql_api/GraphQLStorageApi.h"

namespace bench {

using Fields = std::vector<std::string>;

// All members of the record, or of all records.
Fields fieldsOf(const graphql::GraphQLStorageApi::StoreInfoList& stores);

}  // namespace bench

#endif  // BENCH_FIELDS_H_
