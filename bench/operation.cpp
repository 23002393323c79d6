// Whole operations through the library, over the development host.

#include <memory>

#include "bench/Measure.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

std::shared_ptr<GraphQLApi> makeApi() {
  return std::make_shared<GraphQLApi>(std::make_shared<GraphQLStorageApi>());
}

const std::vector<bench::Row>& rows() {
  static const std::vector<bench::Row> all = {
      bench::row("discovery",
                 [] {
                   const auto api = makeApi();
                   return [api] { return api->getStores(); };
                 }),
  };
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::runProgram(argc, argv, rows());
}
