#include <orvane/utilities/BookStoreVersionProxy.h>
#include <ov_sdk.h>

#include <filesystem>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>

#include "tests/support/TemporaryRoot.h"

using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;
using support::ScopedSetting;
using support::TemporaryRoot;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

const char kTokenFile[] = "/mnt/ext1/system/config/bookstore.cfg";
const char kTokenKey[] = "sacAccessToken";

void save(const char* path) {
  CfgWrapper config(path, CfgWrapper::Write);
  WriteString(config.handle, "storeUrl", "x");
  config.save();
}

std::string registrationToken(const char* path = kTokenFile) {
  return CfgWrapper(path, CfgWrapper::Read).read<CfgSecret>(kTokenKey, CfgSecret());
}

}  // namespace

TEST(BookStoreVersionProxyTest, IsGenerationThreeUnlessSetOtherwise) {
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(false), 3);
  const ScopedSetting setting("ORVANE_STORE_VERSION", "2");
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(false), 2);
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(true), 2);
}

// Existing files use these names, so they never change.
TEST(BookStoreVersionProxyTest, NamesTheKeysOfTheTokenFile) {
  EXPECT_EQ(BookStoreVersionProxy::configKeyAccessToken(), "accessToken");
  EXPECT_EQ(BookStoreVersionProxy::configKeyRefreshToken(), "refreshToken");
  EXPECT_EQ(BookStoreVersionProxy::configKeyExpirationToken(), "tokenExpiration");
  EXPECT_EQ(BookStoreVersionProxy::configKeySacAccessToken(), kTokenKey);
}

TEST(RegistrationTokenTest, StandsInTheTokenFileOnceItIsSaved) {
  const TemporaryRoot root;
  save(kTokenFile);
  EXPECT_THAT(registrationToken(), MatchesRegex("[A-Z0-9]{32}"));
  EXPECT_THAT(CfgWrapper(kTokenFile, CfgWrapper::Read).keys(), ElementsAre(kTokenKey, "storeUrl"));
  EXPECT_EQ(root.log(), "");
}

TEST(RegistrationTokenTest, StandsThereAfterSavingAndClosingToo) {
  const TemporaryRoot root;
  CfgWrapper(kTokenFile, CfgWrapper::Write).saveAndClose();
  EXPECT_NE(registrationToken(), "");
}

TEST(RegistrationTokenTest, IsMadeOnce) {
  const TemporaryRoot root;
  save(kTokenFile);
  const std::string first = registrationToken();
  save(kTokenFile);
  EXPECT_EQ(registrationToken(), first);
}

TEST(RegistrationTokenTest, IsMadeAnewWhenItCannotBeOpened) {
  const TemporaryRoot root;
  save(kTokenFile);
  const std::string first = registrationToken();
  std::filesystem::remove(root.at("/mnt/secure/secret.key"));
  save(kTokenFile);
  EXPECT_THAT(registrationToken(), MatchesRegex("[A-Z0-9]{32}"));
  EXPECT_NE(registrationToken(), first);
}

TEST(RegistrationTokenTest, StandsInNoOtherFile) {
  const TemporaryRoot root;
  save("/mnt/ext1/system/config/other.cfg");
  EXPECT_EQ(registrationToken("/mnt/ext1/system/config/other.cfg"), "");
}

TEST(RegistrationTokenTest, ReadingTheTokenFileMakesNothing) {
  const TemporaryRoot root;
  EXPECT_EQ(registrationToken(), "");
  EXPECT_FALSE(std::filesystem::exists(root.path()));
}
