// Whole operations through the library, over the development host.

#include <memory>
#include <stdexcept>

#include "bench/Inputs.h"
#include "bench/Measure.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

// The library's objects, and the store of the operation.
struct Client {
  explicit Client(const char* operation) : store(bench::storeOf(operation)) {}

  // Signs a customer in, so that requests have the token.
  void signIn() {
    storage->setTokens(bench::kAccessToken, bench::kRefreshToken, "3600", store, "");
  }

  const std::shared_ptr<GraphQLStorageApi> storage = std::make_shared<GraphQLStorageApi>();
  GraphQLApi api{storage};
  const GraphQLStorageApi::StoreInfo store;
};

auto discovery() {
  const auto client = std::make_shared<Client>("discovery");
  return [client] { return client->api.getStores(); };
}

auto signIn() {
  const auto client = std::make_shared<Client>("sign-in");
  return [client] {
    auto login = client->api.auth(client->store, bench::kEmail, bench::kPassword);
    return bench::Session{std::move(login), client->storage->magentoCacheId()};
  };
}

auto tokenRefresh() {
  const auto client = std::make_shared<Client>("token-refresh");
  client->signIn();
  return [client] {
    return bench::Session{client->api.refreshTokens(client->store, bench::kRefreshToken), ""};
  };
}

auto profile() {
  const auto client = std::make_shared<Client>("profile");
  client->signIn();
  return [client] {
    GraphQLStorageApi::UserInfo customer;
    if (client->api.userInfo(client->store, &customer) != GraphQLApi::Ok) {
      throw std::runtime_error("no profile was received");
    }
    return customer;
  };
}

auto sampleMetadata() {
  const auto client = std::make_shared<Client>("sample-metadata");
  client->signIn();
  return [client] { return client->api.sampleMetadata(client->store, bench::kUid); };
}

const std::vector<bench::Row>& rows() {
  static const std::vector<bench::Row> all = {
      bench::row("discovery", discovery),
      bench::row("sign-in", signIn),
      bench::row("token-refresh", tokenRefresh),
      bench::row("profile", profile),
      bench::row("sample-metadata", sampleMetadata),
  };
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::runProgram(argc, argv, rows());
}
