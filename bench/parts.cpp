// Measures parts of the library through its exports, over the development host. Only the exchange
// is simulated: this program defines its own runner, which responds at once.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <orvane/utilities/HttpRequest.h>
#include <orvane/utilities/HttpRequestRunner.h>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLHeader.h"
#include "graphql_api/GraphQLStorageApi.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace {

struct {
  long status = 0;
  std::string body;
} playedAnswer;

}  // namespace

int orvane::utilities::HttpRequestRunner::PerformRequest(const HttpRequest&, long* status,
                                                         std::vector<char>* body, unsigned int) {
  *status = playedAnswer.status;
  body->assign(playedAnswer.body.begin(), playedAnswer.body.end());
  return 0;
}

namespace {

const char kFolderTemplate[] = "graphql-api-parts-XXXXXX";

// The root folder of this process: in BENCH_FOLDER, which the caller removes even if this process
// is killed, else in memory if possible.
class TemporaryRoot {
 public:
  TemporaryRoot() {
    const char* given = std::getenv("BENCH_FOLDER");
    const bool hasMemory = std::filesystem::is_directory("/dev/shm");
    path_ = (given != nullptr ? given
             : hasMemory      ? "/dev/shm"
                              : std::filesystem::temp_directory_path().string()) +
            "/" + kFolderTemplate;
    if (::mkdtemp(&path_[0]) == nullptr || ::setenv("ORVANE_ROOT", path_.c_str(), 1) != 0) {
      throw std::runtime_error("cannot create the folder " + path_);
    }
  }
  ~TemporaryRoot() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryRoot(const TemporaryRoot&) = delete;
  TemporaryRoot& operator=(const TemporaryRoot&) = delete;

 private:
  std::string path_;
};

std::string textOfFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (text.empty()) {
    throw std::runtime_error(std::string("cannot read ") + path);
  }
  return text;
}

GraphQLStorageApi::StoreInfoList discoveredStores() {
  return GraphQLApi(nullptr).getStores();
}

void headerMap(benchmark::State& state) {
  const auto storage = std::make_shared<GraphQLStorageApi>();
  GraphQLStorageApi::StoreInfo store = discoveredStores().front();
  storage->setTokens("access", "refresh", "3600", store, "cache");
  const auto type = static_cast<GraphQLStorageApi::TokenType>(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(graphql::graphQLHeaders(storage, store, type));
  }
}
BENCHMARK(headerMap)->ArgName("type")->DenseRange(GraphQLStorageApi::None,
                                                  GraphQLStorageApi::CustomerRefresh);

// Body and headers of a request only: the library does not parse a response with this status.
void request(benchmark::State& state) {
  GraphQLApi api(nullptr);
  const GraphQLStorageApi::StoreInfo store = discoveredStores().front();
  bool isAvailable = false;
  playedAnswer.status = 500;
  for (auto _ : state) {
    benchmark::DoNotOptimize(api.isEmailAvailable(store, "reader@bookstore.example", &isAvailable));
  }
  playedAnswer.status = 200;
}
BENCHMARK(request);

// A whole operation, except the exchange and the file.
void requestParseAndRead8Stores(benchmark::State& state) {
  GraphQLApi api(nullptr);
  for (auto _ : state) {
    benchmark::DoNotOptimize(api.getStores());
  }
}
BENCHMARK(requestParseAndRead8Stores);

void save8Stores(benchmark::State& state) {
  GraphQLStorageApi storage;
  const GraphQLStorageApi::StoreInfoList stores = discoveredStores();
  for (auto _ : state) {
    storage.setStoresList(stores);
  }
}
BENCHMARK(save8Stores);

void load8Stores(benchmark::State& state) {
  GraphQLStorageApi storage;
  storage.setStoresList(discoveredStores());
  for (auto _ : state) {
    storage.loadStoreList();
  }
}
BENCHMARK(load8Stores);

void run(int argc, char** argv) {
  const TemporaryRoot root;
  playedAnswer.status = 200;
  playedAnswer.body = textOfFile(BENCH_ANSWERS_FOLDER "/discovery.json");
  if (discoveredStores().size() != 8) {
    throw std::runtime_error("the response does not have 8 stores");
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(argc, argv);
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << "\n";
    return 1;
  }
}
