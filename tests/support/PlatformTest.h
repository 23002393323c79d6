// Shared by the library's unit tests: a new fake platform per test, the library's files by name,
// and sample records.

#ifndef TESTS_SUPPORT_PLATFORMTEST_H_
#define TESTS_SUPPORT_PLATFORMTEST_H_

#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "graphql_api/GraphQLStorageApi.h"
#include "platform/fake/FakePlatform.h"
#include "tests/support/StoreRecords.h"

constexpr int kFailureLevel = 2;
constexpr int kInformationLevel = 5;

const char kStoreListPath[] = "/mnt/ext1/system/state/cache/store_list.cfg";
const char kTokenPath[] = "/mnt/ext1/system/config/bookstore.cfg";

class PlatformTest : public ::testing::Test {
 protected:
  PlatformTest() { fake::reset(); }

  // Writes the device's own token, without which the tokens in the file are ignored.
  void deviceIsRegistered() { platform().config.setSecret(kTokenPath, "fakeSac", "device"); }

  // Makes the token file that of a signed-in customer of `store`.
  void tokenFileHolds(const StoreInfo& store) {
    deviceIsRegistered();
    platform().config.setSecret(kTokenPath, "fakeAccess", "access");
    platform().config.setSecret(kTokenPath, "fakeRefresh", "refresh");
    platform().config.setSecret(kTokenPath, "fakeExpiration", "3600");
    platform().config.setText(kTokenPath, "storeUrl", store.url);
    platform().config.setText(kTokenPath, "storeApiUrl", store.apiUrl);
    platform().config.setText(kTokenPath, "storeProvider", store.providerID);
    platform().config.setSecret(kTokenPath, "storeCacheId", "cache-id");
  }

  std::map<std::string, std::string>& storeListFile() {
    return platform().config.files[kStoreListPath];
  }
  std::map<std::string, std::string>& tokenFile() { return platform().config.files[kTokenPath]; }

  // A state object over the current files, without the calls and log lines of its construction.
  std::shared_ptr<graphql::GraphQLStorageApi> makeStorage() {
    auto storage = std::make_shared<graphql::GraphQLStorageApi>();
    platform().calls.clear();
    platform().log.clear();
    return storage;
  }

  static fake::Platform& platform() { return fake::platform(); }
};

#endif  // TESTS_SUPPORT_PLATFORMTEST_H_
