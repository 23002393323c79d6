// What the tests of the command line share: the program as a function, over the fake platform.

#ifndef TESTS_BOOKSTORE_BOOKSTORETEST_H_
#define TESTS_BOOKSTORE_BOOKSTORETEST_H_

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include "base/DryRun.h"
#include "bookstore/ExitCode.h"
#include "bookstore/Run.h"
#include "graphql_api/GraphQLStorageApi.h"
#include "platform/fake/FakePlatform.h"
#include "tests/support/Json.h"
#include "tests/support/StoreRecords.h"
#include "tests/support/TemporaryRoot.h"

namespace bookstore_tests {

using Store = graphql::GraphQLStorageApi::StoreInfo;

inline Store store(const std::string& providerID, const std::string& storeCode,
                   const std::string& storeName = "A store") {
  Store store = makeStore(providerID);
  store.storeName = storeName;
  store.language = "Deutsch";
  store.langCode = "de";
  store.storeCode = storeCode;
  store.providerID = providerID;
  return store;
}

class BookstoreTest : public ::testing::Test {
 protected:
  BookstoreTest() {
    fake::reset();
    // As the host's runner does.
    fake::platform().http.beforeSending = [](const std::string& curlCommand) {
      if (base::isDryRun()) {
        throw base::DryRun(curlCommand);
      }
    };
  }

  // The exit code; what was printed is in out and err.
  int run(const std::vector<std::string>& words) { return run(words, bookstore::commands()); }

  int run(const std::vector<std::string>& words, const std::vector<bookstore::Command>& table) {
    std::ostringstream outStream;
    std::ostringstream errStream;
    const int code =
        bookstore::run(words, {outStream, errStream, outIsTerminal, errIsTerminal}, table);
    out = outStream.str();
    err = errStream.str();
    return code;
  }

  void fileHolds(const std::vector<Store>& stores) {
    graphql::GraphQLStorageApi().setStoresList(stores);
  }

  // Tokens that are empty sign nobody in.
  void customerAt(const Store& store, const std::string& accessToken,
                  const std::string& refreshToken) {
    fake::platform().config.setSecret("/mnt/ext1/system/config/bookstore.cfg", "fakeSac", "device");
    graphql::GraphQLStorageApi().setTokens(accessToken, refreshToken, "3600", store, "cache");
  }

  void serverAnswers(const std::string& body, long status = 200) {
    fake::platform().http.answer(status, body);
  }

  Json::Value json() const { return support::parseJson(out); }

  bool outIsTerminal = false;
  bool errIsTerminal = false;
  std::string out;
  std::string err;

  support::TemporaryRoot root;
  support::ScopedSetting terminalKind{"TERM", "xterm"};
  support::ScopedSetting noColor{"NO_COLOR", ""};
  support::ScopedSetting logLevel{"ORVANE_LOG_LEVEL", ""};
  support::ScopedSetting logSecrets{"ORVANE_LOG_SECRETS", ""};
};

// One open store of an answer, with the members in `more` instead of the usual ones.
inline std::string storeAnswer(const std::string& members) {
  return R"({"data":{"availableBookStores":[{"status":true,)" + members + "}]}}";
}

}  // namespace bookstore_tests

#endif  // TESTS_BOOKSTORE_BOOKSTORETEST_H_
