// What the end-to-end tests share: one store service per program, and per test a root folder of its
// own with a log in it.

#ifndef TESTS_END_TO_END_ENDTOENDTEST_H_
#define TESTS_END_TO_END_ENDTOENDTEST_H_

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "graphql_api/GraphQLApi.h"
#include "tests/end_to_end/StoreService.h"

namespace end_to_end {

class EndToEndTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { service_ = std::make_unique<StoreService>(); }
  static void TearDownTestSuite() { service_.reset(); }

  EndToEndTest() {
    set("ORVANE_ROOT", root());
    set("ORVANE_LOG", folder_.path() + "/log");
    set("ORVANE_LOG_LEVEL", "5");
    set("ORVANE_CA_FILE", store().authority());
    set("ORVANE_CONNECT_TO", store().connectTo());
    for (const char* name : {"ORVANE_HTTP_VERSION", "ORVANE_MAX_ANSWER_BYTES", "ORVANE_PINNED_KEY",
                             "ORVANE_STALL_TIMEOUT", "ORVANE_CONNECT_TIMEOUT"}) {
      ::unsetenv(name);
    }
    store().reset();
  }

  static StoreService& store() { return *service_; }

  static void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

  std::string root() const { return folder_.path() + "/root"; }

  // An API object over a fresh state object; failures are told to `failures`.
  std::unique_ptr<graphql::GraphQLApi> makeApi() {
    storage = std::make_shared<graphql::GraphQLStorageApi>();
    auto made = std::make_unique<graphql::GraphQLApi>(storage);
    made->setErrorCb([this](int err, int code) { failures.emplace_back(err, code); });
    return made;
  }

  // The lines of the log that hold `text`, from their text on.
  std::vector<std::string> logged(const std::string& text) const {
    std::vector<std::string> lines;
    for (const auto& file : contentOf(folder_.path())) {
      if (file.first != "/log") {
        continue;
      }
      std::istringstream in(file.second);
      for (std::string line; std::getline(in, line);) {
        const std::size_t start = line.find(text);
        if (start != std::string::npos) {
          lines.push_back(line.substr(start));
        }
      }
    }
    return lines;
  }

  std::shared_ptr<graphql::GraphQLStorageApi> storage;
  std::vector<std::pair<int, int>> failures;

 private:
  static inline std::unique_ptr<StoreService> service_;
  const TemporaryFolder folder_;
};

}  // namespace end_to_end

#endif  // TESTS_END_TO_END_ENDTOENDTEST_H_
