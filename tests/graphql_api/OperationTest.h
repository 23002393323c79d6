// Shared by the tests of single operations: a signed-in customer, an API object over that state,
// and a callback that is recorded with the platform's calls.

#ifndef TESTS_GRAPHQL_API_OPERATIONTEST_H_
#define TESTS_GRAPHQL_API_OPERATIONTEST_H_

#include <memory>
#include <string>
#include <vector>

#include <json/json.h>

#include "graphql_api/GraphQLApi.h"
#include "tests/support/Json.h"
#include "tests/support/PlatformTest.h"

class OperationTest : public PlatformTest {
 protected:
  OperationTest() : storage(makeStorage()), api(storage) {
    storage->setStoresList({store, makeStore("other")});
    storage->setTokens("access", "refresh", "3600", store, "cache-id");
    forgetCalls();
    api.setErrorCb([](int err, int code) {
      platform().calls.push_back("callback " + std::to_string(err) + " " + std::to_string(code));
    });
  }

  void forgetCalls() {
    platform().calls.clear();
    platform().log.clear();
  }

  // Callbacks, log lines of failures and of responses, and writes of the session, in order.
  std::vector<std::string> effects() { return platform().callsOf({"callback", "log", "save"}); }

  const fake::Request& request() { return platform().http.requests.back(); }

  Json::Value requestBody() { return support::parseJson(request().body); }

  void expectRequest(const std::string& query, const std::string& authorization) {
    EXPECT_EQ(request().method, "POST");
    EXPECT_EQ(request().url, store.apiUrl);
    EXPECT_EQ(requestBody()["query"].asString(), query);
    EXPECT_EQ(request().header("Authorization"), authorization);
    EXPECT_EQ(request().header("Store"), store.storeCode);
    EXPECT_EQ(request().body.back(), '\n');
  }

  // The log line of a parsed response.
  static std::string responseLine(const std::string& label, const std::string& answer) {
    return "log 5 " + label + " responce: [" + support::parseJson(answer).toStyledString() + "]";
  }

  const StoreInfo store = makeStore("a");
  std::shared_ptr<graphql::GraphQLStorageApi> storage;
  graphql::GraphQLApi api;
};

// Responses without any data: the root, or its "data", is missing or not an object.
const char* const kAnswersWithoutData[] = {"",
                                           "{}",
                                           "502 Bad Gateway",
                                           "[]",
                                           "5",
                                           "null",
                                           "\"text\"",
                                           "true",
                                           "{",
                                           R"({"data":null})",
                                           R"({"data":[]})",
                                           R"({"data":5})",
                                           R"({"data":"text"})",
                                           R"({"data":{}})"};

#endif  // TESTS_GRAPHQL_API_OPERATIONTEST_H_
