// Shared by the end-to-end tests: one store service per program, and a separate root folder with a
// log for each test.

#ifndef TESTS_SUPPORT_ENDTOENDTEST_H_
#define TESTS_SUPPORT_ENDTOENDTEST_H_

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "graphql_api/GraphQLApi.h"
#include "tests/support/ScopedSetting.h"
#include "tests/support/StoreService.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

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
      settings_.unset(name);
    }
    store().reset();
  }

  static StoreService& store() { return *service_; }

  // Sets an environment variable until the end of the test.
  void set(const std::string& name, const std::string& value) { settings_.set(name, value); }

  std::string root() const { return folder_.path() + "/root"; }

  // An API object over a new state object; it adds its failures to `failures`.
  std::unique_ptr<graphql::GraphQLApi> makeApi() {
    storage = std::make_shared<graphql::GraphQLStorageApi>();
    auto made = std::make_unique<graphql::GraphQLApi>(storage);
    made->setErrorCb([this](int err, int code) { failures.emplace_back(err, code); });
    return made;
  }

  // The lines of the log that contain `text`, without their prefix.
  std::vector<std::string> logged(const std::string& text) const {
    std::vector<std::string> lines;
    std::istringstream in(contentOfFile(folder_.path() + "/log"));
    for (std::string line; std::getline(in, line);) {
      const std::size_t start = line.find(text);
      if (start != std::string::npos) {
        lines.push_back(line.substr(start));
      }
    }
    return lines;
  }

  std::shared_ptr<graphql::GraphQLStorageApi> storage;
  std::vector<std::pair<int, int>> failures;

 private:
  static inline std::unique_ptr<StoreService> service_;
  const TemporaryFolder folder_;
  ScopedSettings settings_;
};

}  // namespace support

#endif  // TESTS_SUPPORT_ENDTOENDTEST_H_
