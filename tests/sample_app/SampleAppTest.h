// What the tests of the application's parts share: a signed-in customer over the fake platform, a
// root folder with a folder for books, and an empty queue.

#ifndef TESTS_SAMPLE_APP_SAMPLEAPPTEST_H_
#define TESTS_SAMPLE_APP_SAMPLEAPPTEST_H_

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <json/json.h>

#include "sample_app/FailureList.h"
#include "sample_app/WorkQueue.h"
#include "tests/support/Json.h"
#include "tests/support/PlatformTest.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/TemporaryRoot.h"

const char kPng[] = "\x89PNG\r\n\x1a\nand so on";

using Item = sample_app::SampleItem;

using support::kQueuePath;
using support::parseJson;
using support::parseJsonLines;
using support::queued;
using support::queueHolds;

class SampleAppTest : public PlatformTest {
 protected:
  SampleAppTest() {
    support::removeQueue();
    tokenFileHolds(store);
    storage = makeStorage();
    storage->setStoresList({store});
    root.put("/mnt/ext1/books/readme", "");
    forgetCalls();
  }

  void forgetCalls() {
    platform().calls.clear();
    platform().log.clear();
  }

  // The store's next answer: the book `uid`.
  void answerBook(const std::string& uid, const std::string& thumbnailUrl = "") {
    platform().http.answer(
        200, R"({"data":{"productDetails":{"product":{"uid":")" + uid + R"(","name":"Title of )" +
                 uid + R"(","authors":[{"full_name":"Ada"}],"thumbnail":{"url":")" + thumbnailUrl +
                 R"("},"price_range":{"minimum_price":{"regular_price":{"currency":"EUR",)"
                 R"("value":9.99},"final_price":{"currency":"EUR","value":7.5}}}}}}})");
  }

  // The store's next answers: no such book; and who the customer is.
  void answerNoBook() {
    platform().http.answer(200, R"({"data":{"productDetails":{"product":null}}})");
  }
  void answerCustomer() {
    platform().http.answer(200, R"({"data":{"customer":{"email":"a","firstname":"A",)"
                                R"("lastname":"B"}}})");
  }

  std::vector<Json::Value> failures() {
    return parseJsonLines(root.contentOf(sample_app::kFailureListPath));
  }

  // The uids or names of operations that were asked for, one per request.
  std::vector<std::string> asked() {
    std::vector<std::string> operations;
    for (const fake::Request& request : platform().http.requests) {
      std::string found = request.method + " " + request.url;
      for (const char* name : {"productDetails", "refreshTokens", "customer"}) {
        if (request.body.find(name) != std::string::npos) {
          found = name;
          break;
        }
      }
      operations.push_back(found);
    }
    return operations;
  }

  const support::TemporaryRoot root;
  const StoreInfo store = makeStore("a");
  std::shared_ptr<graphql::GraphQLStorageApi> storage;
  graphql::GraphQLSampleQueue libraryQueue;
};

#endif  // TESTS_SAMPLE_APP_SAMPLEAPPTEST_H_
