#include <orvane/utilities/BookStoreVersionProxy.h>
#include <ov_sdk.h>

#include <filesystem>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>

#include "tests/platform/host/TemporaryRoot.h"

using host_tests::ScopedSetting;
using host_tests::TemporaryRoot;
using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

const char kTokenFile[] = "/mnt/ext1/system/config/bookstore.cfg";
const char kProofKey[] = "sacAccessToken";

void save(const char* path) {
  CfgWrapper config(path, CfgWrapper::Write);
  WriteString(config.handle, "storeUrl", "x");
  config.save();
}

std::string proof(const char* path = kTokenFile) {
  return CfgWrapper(path, CfgWrapper::Read).read<CfgSecret>(kProofKey, CfgSecret());
}

}  // namespace

TEST(BookStoreVersionProxyTest, IsGenerationThreeUnlessSetOtherwise) {
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(false), 3);
  const ScopedSetting setting("ORVANE_STORE_VERSION", "2");
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(false), 2);
  EXPECT_EQ(BookStoreVersionProxy::storeVersion(true), 2);
}

// Files outlive releases: these names never change.
TEST(BookStoreVersionProxyTest, NamesTheKeysOfTheTokenFile) {
  EXPECT_EQ(BookStoreVersionProxy::configKeyAccessToken(), "accessToken");
  EXPECT_EQ(BookStoreVersionProxy::configKeyRefreshToken(), "refreshToken");
  EXPECT_EQ(BookStoreVersionProxy::configKeyExpirationToken(), "tokenExpiration");
  EXPECT_EQ(BookStoreVersionProxy::configKeySacAccessToken(), kProofKey);
}

TEST(RegistrationProofTest, StandsInTheTokenFileOnceItIsSaved) {
  const TemporaryRoot root;
  save(kTokenFile);
  EXPECT_THAT(proof(), MatchesRegex("[A-Z0-9]{32}"));
  EXPECT_THAT(CfgWrapper(kTokenFile, CfgWrapper::Read).keys(), ElementsAre(kProofKey, "storeUrl"));
  EXPECT_EQ(root.log(), "");
}

TEST(RegistrationProofTest, StandsThereAfterSavingAndClosingToo) {
  const TemporaryRoot root;
  CfgWrapper(kTokenFile, CfgWrapper::Write).saveAndClose();
  EXPECT_NE(proof(), "");
}

TEST(RegistrationProofTest, IsMadeOnce) {
  const TemporaryRoot root;
  save(kTokenFile);
  const std::string first = proof();
  save(kTokenFile);
  EXPECT_EQ(proof(), first);
}

TEST(RegistrationProofTest, IsMadeAnewWhenItCannotBeOpened) {
  const TemporaryRoot root;
  save(kTokenFile);
  const std::string first = proof();
  std::filesystem::remove(root.at("/mnt/secure/secret.key"));
  save(kTokenFile);
  EXPECT_THAT(proof(), MatchesRegex("[A-Z0-9]{32}"));
  EXPECT_NE(proof(), first);
}

TEST(RegistrationProofTest, StandsInNoOtherFile) {
  const TemporaryRoot root;
  save("/mnt/ext1/system/config/other.cfg");
  EXPECT_EQ(proof("/mnt/ext1/system/config/other.cfg"), "");
}

TEST(RegistrationProofTest, ReadingTheTokenFileMakesNothing) {
  const TemporaryRoot root;
  EXPECT_EQ(proof(), "");
  EXPECT_FALSE(std::filesystem::exists(root.path()));
}
