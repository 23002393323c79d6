// The functions for the embedded browser, called by their unmangled names as another program would.

#include <dlfcn.h>

#include "graphql_api/GraphQLHeader.h"
#include "tests/support/PlatformTest.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Pair;

namespace {

using TextMap = std::map<std::string, std::string>;

class BrowserTest : public PlatformTest {
 protected:
  BrowserTest() {
    makeStorage()->setStoresList({makeStore("a"), makeStore("b")});
    forgetCalls();
  }

  void forgetCalls() { platform().calls.clear(); }

  template <typename Function>
  static Function* symbol(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_DEFAULT, name));
  }

  static void cookies(TextMap* output, std::string* address) {
    symbol<void(TextMap*, std::string*)>("getBrowserCookies")(output, address);
  }

  static void headers(TextMap* output, std::string* address) {
    symbol<void(TextMap*, std::string*)>("getBrowserGraphQLHeaders")(output, address);
  }

  static bool loggedIn() { return symbol<bool()>("isLoggedIn")(); }

  TextMap map{{"old", "entry"}};
  std::string storeUrl = "old url";
};

}  // namespace

TEST_F(BrowserTest, ASignedInCustomerHasFourCookiesWithBareTokens) {
  tokenFileHolds(makeStore("b"));
  cookies(&map, &storeUrl);
  EXPECT_THAT(
      map,
      ElementsAre(Pair("orvane-customer", "access"), Pair("orvane-customer-refresh", "refresh"),
                  Pair("orvane-serial-number", "SN0001"), Pair("x-magento-cache-id", "cache-id")));
  EXPECT_EQ(storeUrl, "https://b.example/");
}

TEST_F(BrowserTest, EmptyTokensHaveNoCookies) {
  tokenFileHolds(makeStore("b"));
  platform().config.setSecret(kTokenPath, "fakeRefresh", "");
  platform().config.setSecret(kTokenPath, "storeCacheId", "");
  cookies(&map, nullptr);
  EXPECT_THAT(map, ElementsAre(Key("orvane-customer"), Key("orvane-serial-number")));
}

TEST_F(BrowserTest, ASignedInCustomerHasTheHeadersWithBothTokens) {
  tokenFileHolds(makeStore("b"));
  headers(&map, &storeUrl);
  EXPECT_THAT(map, ElementsAre(Pair("Authorization", "Bearer access"), Key("Content-Type"),
                               Key("Cookie"), Pair("RefreshToken", "Bearer refresh"),
                               Pair("Store", "b_b"), Key("User-Agent"), Key("x-header-deviceid"),
                               Key("x-header-reader-model"), Key("x-header-software-version")));
  EXPECT_EQ(storeUrl, "https://b.example/");
}

TEST_F(BrowserTest, WithoutACustomerTheMapIsEmptiedAndTheAddressIsGiven) {
  tokenFileHolds(makeStore("b"));
  platform().config.setSecret(kTokenPath, "fakeAccess", "");
  for (const auto fill : {&cookies, &headers}) {
    map = {{"old", "entry"}};
    storeUrl = "old url";
    fill(&map, &storeUrl);
    EXPECT_THAT(map, IsEmpty());
    EXPECT_EQ(storeUrl, "https://b.example/");
  }
}

TEST_F(BrowserTest, WithoutAValidStoreTheMapIsEmptiedAndTheAddressStays) {
  tokenFileHolds(makeStore("unknown"));
  for (const auto fill : {&cookies, &headers}) {
    map = {{"old", "entry"}};
    fill(&map, &storeUrl);
    EXPECT_THAT(map, IsEmpty());
    EXPECT_EQ(storeUrl, "old url");
  }
}

TEST_F(BrowserTest, EitherOutputMayBeLeftOut) {
  tokenFileHolds(makeStore("b"));
  for (const auto fill : {&cookies, &headers}) {
    storeUrl.clear();
    fill(nullptr, &storeUrl);
    EXPECT_EQ(storeUrl, "https://b.example/");
    map.clear();
    fill(&map, nullptr);
    EXPECT_FALSE(map.empty());
  }
}

TEST_F(BrowserTest, WithoutAnyOutputNothingIsAsked) {
  cookies(nullptr, nullptr);
  headers(nullptr, nullptr);
  EXPECT_THAT(platform().calls, IsEmpty());
}

TEST_F(BrowserTest, AnotherStoreGenerationLeavesBothOutputs) {
  tokenFileHolds(makeStore("b"));
  for (const int version : {2, 4, 0}) {
    platform().device.storeVersion = version;
    forgetCalls();
    cookies(&map, &storeUrl);
    headers(&map, &storeUrl);
    EXPECT_THAT(map, ElementsAre(Pair("old", "entry")));
    EXPECT_EQ(storeUrl, "old url");
    EXPECT_THAT(platform().calls, ElementsAre("storeVersion false", "storeVersion false"));
  }
}

TEST_F(BrowserTest, EachCallReadsTheFilesAfresh) {
  tokenFileHolds(makeStore("b"));
  EXPECT_TRUE(loggedIn());
  graphql::GraphQLStorageApi().logoutOnlyFromStore();
  EXPECT_FALSE(loggedIn());
  cookies(&map, nullptr);
  EXPECT_THAT(map, IsEmpty());
}

TEST_F(BrowserTest, NobodyIsSignedInWithoutATokenFile) {
  EXPECT_FALSE(loggedIn());
}

TEST_F(BrowserTest, SignedInDoesNotDependOnTheStoreGeneration) {
  tokenFileHolds(makeStore("b"));
  platform().device.storeVersion = 2;
  EXPECT_TRUE(loggedIn());
  EXPECT_THAT(platform().callsOf({"storeVersion"}), IsEmpty());
}

TEST_F(BrowserTest, NoCallChangesAFile) {
  tokenFileHolds(makeStore("b"));
  cookies(&map, &storeUrl);
  headers(&map, &storeUrl);
  loggedIn();
  EXPECT_THAT(platform().callsOf({"save", "saveAndClose"}), IsEmpty());
}
