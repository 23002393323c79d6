#include "graphql_api/GraphQLHeader.h"

#include "tests/support/PlatformTest.h"

using graphql::graphQLHeaders;
using graphql::GraphQLStorageApi;
using ::testing::ElementsAre;
using ::testing::Key;
using ::testing::Pair;

namespace {

class GraphQLHeaderTest : public PlatformTest {
 protected:
  using Headers = std::map<std::string, std::string>;

  // The headers of the signed-in customer's store.
  Headers headers(GraphQLStorageApi::TokenType type, const std::string& accessToken = "access",
                  const std::string& refreshToken = "refresh") {
    const auto storage = makeStorage();
    storage->setTokens(accessToken, refreshToken, "3600", StoreInfo(), "");
    return graphQLHeaders(storage, makeStore("a"), type);
  }
};

}  // namespace

TEST_F(GraphQLHeaderTest, WithoutCredentialsThereAreSevenHeadersInTheOrderOfTheirNames) {
  EXPECT_THAT(headers(GraphQLStorageApi::None),
              ElementsAre(Key("Content-Type"), Key("Cookie"), Key("Store"), Key("User-Agent"),
                          Key("x-header-deviceid"), Key("x-header-reader-model"),
                          Key("x-header-software-version")));
}

TEST_F(GraphQLHeaderTest, TheHeadersTellTheStoreAndTheDevice) {
  EXPECT_THAT(
      headers(GraphQLStorageApi::None),
      ElementsAre(Pair("Content-Type", "application/json"),
                  Pair("Cookie", "orvane-currency=EUR; orvane-locale=a; orvane-store=a_a"),
                  Pair("Store", "a_a"),
                  Pair("User-Agent", "Orvane Reader/417(screen 1200x1600; FW 3.2.105)"),
                  Pair("x-header-deviceid", "SN0001"), Pair("x-header-reader-model", "eink 417"),
                  Pair("x-header-software-version", "3.2.105")));
}

TEST_F(GraphQLHeaderTest, AnEmptyStoreHasAllThreePartsOfTheCookie) {
  EXPECT_EQ(graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None).at("Cookie"),
            "orvane-currency=; orvane-locale=; orvane-store=");
}

TEST_F(GraphQLHeaderTest, IntegrationSendsTheStoresToken) {
  const Headers sent = headers(GraphQLStorageApi::Integration);
  EXPECT_EQ(sent.at("Authorization"), "Bearer integration-a");
  EXPECT_EQ(sent.count("RefreshToken"), 0U);
}

TEST_F(GraphQLHeaderTest, IntegrationWithoutATokenSendsNoAuthorization) {
  StoreInfo store = makeStore("a");
  store.integrationToken.clear();
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", StoreInfo(), "");
  EXPECT_EQ(graphQLHeaders(storage, store, GraphQLStorageApi::Integration).count("Authorization"),
            0U);
}

TEST_F(GraphQLHeaderTest, CustomerSendsTheAccessTokenAlone) {
  const Headers sent = headers(GraphQLStorageApi::Customer);
  EXPECT_EQ(sent.at("Authorization"), "Bearer access");
  EXPECT_EQ(sent.count("RefreshToken"), 0U);
}

TEST_F(GraphQLHeaderTest, CustomerRefreshSendsBothTokensAsBearers) {
  const Headers sent = headers(GraphQLStorageApi::CustomerRefresh);
  EXPECT_THAT(sent, ElementsAre(Pair("Authorization", "Bearer access"), Key("Content-Type"),
                                Key("Cookie"), Pair("RefreshToken", "Bearer refresh"), Key("Store"),
                                Key("User-Agent"), Key("x-header-deviceid"),
                                Key("x-header-reader-model"), Key("x-header-software-version")));
}

TEST_F(GraphQLHeaderTest, EmptyTokensSendNoHeadersOfTheirOwn) {
  const Headers withoutRefresh = headers(GraphQLStorageApi::CustomerRefresh, "access", "");
  EXPECT_EQ(withoutRefresh.count("Authorization"), 1U);
  EXPECT_EQ(withoutRefresh.count("RefreshToken"), 0U);
  const Headers withoutAccess = headers(GraphQLStorageApi::CustomerRefresh, "", "refresh");
  EXPECT_EQ(withoutAccess.count("Authorization"), 0U);
  EXPECT_EQ(withoutAccess.count("RefreshToken"), 1U);
  EXPECT_EQ(headers(GraphQLStorageApi::Customer, "", "refresh").size(), 7U);
}

TEST_F(GraphQLHeaderTest, WithoutStorageThereAreNoCustomerCredentials) {
  for (const auto type : {GraphQLStorageApi::Customer, GraphQLStorageApi::CustomerRefresh}) {
    EXPECT_EQ(graphQLHeaders(nullptr, makeStore("a"), type).size(), 7U);
  }
}

TEST_F(GraphQLHeaderTest, AnUnknownTokenTypeSendsNoCredentials) {
  EXPECT_EQ(headers(static_cast<GraphQLStorageApi::TokenType>(4)).size(), 7U);
}
