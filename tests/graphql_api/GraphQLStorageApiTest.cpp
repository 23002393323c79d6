#include "graphql_api/GraphQLStorageApi.h"

#include <climits>
#include <type_traits>

#include "tests/support/PlatformTest.h"

using graphql::GraphQLStorageApi;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace {

class GraphQLStorageApiTest : public PlatformTest {
 protected:
  // Puts a record into the store list file under `index`.
  void fileHoldsStore(const std::string& index, const StoreInfo& store) {
    fake::Config& config = platform().config;
    config.setText(kStoreListPath, "storeName" + index, store.storeName);
    config.setText(kStoreListPath, "providerID" + index, store.providerID);
    config.setText(kStoreListPath, "url" + index, store.url);
    config.setText(kStoreListPath, "apiUrl" + index, store.apiUrl);
    config.setText(kStoreListPath, "lang" + index, store.language);
    config.setText(kStoreListPath, "langCode" + index, store.langCode);
    config.setText(kStoreListPath, "storeCode" + index, store.storeCode);
    config.setSecret(kStoreListPath, "token" + index, store.integrationToken);
    config.setText(kStoreListPath, "status" + index, store.status ? "true" : "false");
    config.setText(kStoreListPath, "currency" + index, store.currency);
  }

  void fileHoldsCount(const std::string& count) {
    platform().config.setText(kStoreListPath, "count", count);
  }

  static std::vector<std::string> urls(const StoreInfoList& stores) {
    std::vector<std::string> found;
    for (const StoreInfo& store : stores) {
      found.push_back(store.url);
    }
    return found;
  }
};

void expectEmptyRecord(const StoreInfo& store) {
  EXPECT_EQ(store.storeName + store.url + store.apiUrl + store.language + store.langCode +
                store.storeCode + store.integrationToken + store.providerID + store.currency,
            "");
  EXPECT_FALSE(store.status);
}

}  // namespace

// --- Records -------------------------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, AFreshStoreRecordIsEmptyAndClosed) {
  expectEmptyRecord(StoreInfo());
  EXPECT_FALSE(StoreInfo().isValid());
}

TEST_F(GraphQLStorageApiTest, AStoreIsValidWithAnAddressAndAnEndpointAlone) {
  StoreInfo store;
  store.url = "https://a.example/";
  EXPECT_FALSE(store.isValid());
  store.apiUrl = "https://a.example/graphql";
  EXPECT_TRUE(store.isValid());
  store.url.clear();
  EXPECT_FALSE(store.isValid());
}

TEST_F(GraphQLStorageApiTest, TheStateObjectIsNeitherCopiedNorMoved) {
  EXPECT_FALSE(std::is_copy_constructible<GraphQLStorageApi>::value);
  EXPECT_FALSE(std::is_move_constructible<GraphQLStorageApi>::value);
  EXPECT_FALSE(std::is_copy_assignable<GraphQLStorageApi>::value);
  EXPECT_FALSE(std::is_polymorphic<GraphQLStorageApi>::value);
}

// --- Construction --------------------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, ConstructionLoadsTheStoreListAndThenTheTokens) {
  GraphQLStorageApi storage;
  EXPECT_THAT(platform().calls,
              ElementsAre(std::string("CfgWrapper ") + kStoreListPath + " 0", "keys", "closeNoSave",
                          "log 5 Loaded stores: count [0]", "~CfgWrapper",
                          std::string("CfgWrapper ") + kTokenPath + " 0", "keys",
                          "log 5 Load tokens: empty [true]", "closeNoSave", "~CfgWrapper"));
}

TEST_F(GraphQLStorageApiTest, ReloadReadsBothFilesAgain) {
  const auto storage = makeStorage();
  fileHoldsStore("0", makeStore("a"));
  fileHoldsCount("1");
  tokenFileHolds(makeStore("a"));
  storage->reload();
  EXPECT_EQ(storage->currentStore().url, "https://a.example/");
  EXPECT_THAT(platform().callsOf({"CfgWrapper"}),
              ElementsAre(std::string("CfgWrapper ") + kStoreListPath + " 0",
                          std::string("CfgWrapper ") + kTokenPath + " 0"));
}

TEST_F(GraphQLStorageApiTest, DestructionWritesNothing) {
  makeStorage();
  EXPECT_THAT(platform().calls, IsEmpty());
}

TEST_F(GraphQLStorageApiTest, AnExceptionOfTheConfigurationLeavesTheConstructor) {
  for (const int nth : {1, 2}) {
    fake::reset();
    platform().throwAt("CfgWrapper", nth);
    EXPECT_THROW(GraphQLStorageApi(), fake::Failure);
  }
}

// --- Saving the store list -----------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, SavesTheRecordsKeyByKeyInTheOrderOfTheFile) {
  const auto storage = makeStorage();
  StoreInfo closed = makeStore("b");
  closed.status = false;
  storage->setStoresList({makeStore("a"), closed});
  EXPECT_THAT(
      platform().calls,
      ElementsAre(
          "log 5 Save stores: count [2]", std::string("CfgWrapper ") + kStoreListPath + " 1",
          "WriteInt count=2", "WriteString storeName0=Store a",
          "WriteString providerID0=provider-a", "WriteString url0=https://a.example/",
          "WriteString apiUrl0=https://a.example/graphql", "WriteString lang0=Language a",
          "WriteString langCode0=a", "WriteString storeCode0=a_a",
          "WriteSecret token0=integration-a", "WriteString status0=true",
          "WriteString currency0=EUR", "log 5 Save stores: url [0] [https://a.example/]",
          "WriteString storeName1=Store b", "WriteString providerID1=provider-b",
          "WriteString url1=https://b.example/", "WriteString apiUrl1=https://b.example/graphql",
          "WriteString lang1=Language b", "WriteString langCode1=b", "WriteString storeCode1=b_b",
          "WriteSecret token1=integration-b", "WriteString status1=false",
          "WriteString currency1=EUR", "log 5 Save stores: url [1] [https://b.example/]",
          "saveAndClose", "~CfgWrapper"));
}

TEST_F(GraphQLStorageApiTest, SavesAnEmptyListAsACountAlone) {
  const auto storage = makeStorage();
  storage->saveStoreList();
  EXPECT_THAT(storeListFile(), ElementsAre(Pair("count", "0")));
}

TEST_F(GraphQLStorageApiTest, SettingAListReplacesTheOneInMemory) {
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a")});
  storage->setStoresList({makeStore("b"), makeStore("c")});
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://b.example/", "https://c.example/"));
}

TEST_F(GraphQLStorageApiTest, AShorterListLeavesTheHigherKeysUnread) {
  const auto storage = makeStorage();
  storage->setStoresList(
      {makeStore("a"), makeStore("b"), makeStore("c"), makeStore("d"), makeStore("e")});
  storage->setStoresList({makeStore("x"), makeStore("y")});
  EXPECT_EQ(storeListFile().at("count"), "2");
  storage->reload();
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://x.example/", "https://y.example/"));
}

TEST_F(GraphQLStorageApiTest, AnInvalidRecordIsSavedAndGoneAfterTheNextLoad) {
  const auto storage = makeStorage();
  StoreInfo invalid = makeStore("a");
  invalid.url.clear();
  storage->setStoresList({invalid, makeStore("b")});
  EXPECT_EQ(storeListFile().at("apiUrl0"), "https://a.example/graphql");
  EXPECT_EQ(storage->storesList().size(), 2U);
  storage->loadStoreList();
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://b.example/"));
}

TEST_F(GraphQLStorageApiTest, TheEleventhRecordHasKeysThatEndInTen) {
  const auto storage = makeStorage();
  storage->setStoresList(StoreInfoList(11, makeStore("a")));
  EXPECT_EQ(storeListFile().at("currency10"), "EUR");
}

TEST_F(GraphQLStorageApiTest, AnExceptionAmidASaveReachesTheCallerAndLeavesTheFile) {
  const auto storage = makeStorage();
  for (const char* call :
       {"CfgWrapper", "WriteInt", "WriteString", "WriteSecret", "saveAndClose"}) {
    platform().throwAt(call);
    EXPECT_THROW(storage->setStoresList({makeStore("a")}), fake::Failure) << call;
    EXPECT_THAT(storeListFile(), IsEmpty()) << call;
  }
}

// --- Loading the store list ----------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, LoadsWhatWasSaved) {
  const StoreInfo saved = makeStore("a");
  makeStorage()->setStoresList({saved});
  const StoreInfo loaded = GraphQLStorageApi().storesList().at(0);
  EXPECT_EQ(loaded.storeName, saved.storeName);
  EXPECT_EQ(loaded.url, saved.url);
  EXPECT_EQ(loaded.apiUrl, saved.apiUrl);
  EXPECT_EQ(loaded.language, saved.language);
  EXPECT_EQ(loaded.langCode, saved.langCode);
  EXPECT_EQ(loaded.storeCode, saved.storeCode);
  EXPECT_EQ(loaded.integrationToken, saved.integrationToken);
  EXPECT_EQ(loaded.providerID, saved.providerID);
  EXPECT_EQ(loaded.currency, saved.currency);
  EXPECT_TRUE(loaded.status);
}

TEST_F(GraphQLStorageApiTest, LoadsKeyByKeyInTheOrderOfTheFile) {
  fileHoldsStore("0", makeStore("a"));
  fileHoldsCount("1");
  const auto storage = makeStorage();
  storage->loadStoreList();
  EXPECT_THAT(platform().callsOf({"ReadInt", "ReadString", "ReadSecret", "closeNoSave", "log"}),
              ElementsAre("ReadInt count", "ReadString storeName0", "ReadString providerID0",
                          "ReadString url0", "ReadString apiUrl0", "ReadString lang0",
                          "ReadString langCode0", "ReadString storeCode0", "ReadSecret token0",
                          "ReadString status0", "ReadString currency0",
                          "log 5 Loaded stores: url [0] [https://a.example/]", "closeNoSave",
                          "log 5 Loaded stores: count [1]"));
}

TEST_F(GraphQLStorageApiTest, LoadingAListEnumeratesTheKeysOnceForTheCountAndTenTimesPerRecord) {
  makeStorage()->setStoresList(StoreInfoList(8, makeStore("a")));
  const auto storage = makeStorage();
  storage->loadStoreList();
  EXPECT_EQ(platform().callsOf({"keys"}).size(), 81U);
}

TEST_F(GraphQLStorageApiTest, RecordsThatAreDroppedAreReadWhole) {
  fileHoldsStore("3", makeStore("d"));
  fileHoldsCount("4");
  const auto storage = makeStorage();
  storage->loadStoreList();
  EXPECT_EQ(platform().callsOf({"keys"}).size(), 41U);
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://d.example/"));
}

TEST_F(GraphQLStorageApiTest, TenThousandRecordsAreWalkedAndOfMoreOnlyThoseWithAnAddress) {
  fileHoldsStore("9999", makeStore("a"));
  fileHoldsCount("10000");
  const auto storage = makeStorage();
  storage->loadStoreList();
  EXPECT_EQ(platform().callsOf({"keys"}).size(), 100001U);
  platform().calls.clear();
  fileHoldsCount("10001");
  storage->loadStoreList();
  EXPECT_EQ(platform().callsOf({"keys"}).size(), 12U);
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://a.example/"));
}

TEST_F(GraphQLStorageApiTest, LoadingReplacesTheList) {
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a")});
  storeListFile().clear();
  storage->loadStoreList();
  EXPECT_THAT(storage->storesList(), IsEmpty());
  EXPECT_THAT(platform().logTexts(kInformationLevel), Contains("Loaded stores: count [0]"));
}

TEST_F(GraphQLStorageApiTest, ACountOfZeroLoadsNothing) {
  fileHoldsStore("0", makeStore("a"));
  fileHoldsCount("0");
  EXPECT_THAT(GraphQLStorageApi().storesList(), IsEmpty());
}

TEST_F(GraphQLStorageApiTest, OnlyTheExactTextTrueOpensAStore) {
  const char* texts[] = {"true", "True", "TRUE", "1", "", "true ", "false"};
  int index = 0;
  for (const char* text : texts) {
    fileHoldsStore(std::to_string(index), makeStore("a"));
    platform().config.setText(kStoreListPath, "status" + std::to_string(index++), text);
  }
  fileHoldsCount(std::to_string(index));
  const StoreInfoList stores = GraphQLStorageApi().storesList();
  ASSERT_EQ(stores.size(), 7U);
  for (std::size_t position = 0; position < stores.size(); ++position) {
    EXPECT_EQ(stores[position].status, position == 0) << texts[position];
  }
}

TEST_F(GraphQLStorageApiTest, MissingKeysOfARecordLoadAsEmptyAndClosed) {
  platform().config.setText(kStoreListPath, "url0", "https://a.example/");
  platform().config.setText(kStoreListPath, "apiUrl0", "https://a.example/graphql");
  fileHoldsCount("1");
  const StoreInfo store = GraphQLStorageApi().storesList().at(0);
  EXPECT_EQ(store.storeName + store.language + store.integrationToken + store.currency, "");
  EXPECT_FALSE(store.status);
}

TEST_F(GraphQLStorageApiTest, ARecordWithoutAnEndpointIsDroppedAndTheOthersMoveUp) {
  StoreInfo broken = makeStore("b");
  broken.apiUrl.clear();
  fileHoldsStore("0", makeStore("a"));
  fileHoldsStore("1", broken);
  fileHoldsStore("2", makeStore("c"));
  fileHoldsCount("3");
  const auto storage = makeStorage();
  storage->loadStoreList();
  EXPECT_THAT(urls(storage->storesList()), ElementsAre("https://a.example/", "https://c.example/"));
  EXPECT_THAT(
      platform().logTexts(kInformationLevel),
      ElementsAre("Loaded stores: url [0] [https://a.example/]",
                  "Loaded stores: url [2] [https://c.example/]", "Loaded stores: count [2]"));
}

TEST_F(GraphQLStorageApiTest, AnAbsurdCountLoadsEveryRecordThatTheFileHolds) {
  for (const char* count : {"2000000000", "-1", "-2147483648", "2147483647"}) {
    fake::reset();
    fileHoldsStore("0", makeStore("a"));
    fileHoldsStore("7", makeStore("b"));
    fileHoldsStore("1999999999", makeStore("c"));
    fileHoldsCount(count);
    const auto storage = makeStorage();
    storage->loadStoreList();
    EXPECT_THAT(urls(storage->storesList()),
                ElementsAre("https://a.example/", "https://b.example/", "https://c.example/"))
        << count;
    EXPECT_THAT(platform().logTexts(kInformationLevel),
                ElementsAre("Loaded stores: url [0] [https://a.example/]",
                            "Loaded stores: url [7] [https://b.example/]",
                            "Loaded stores: url [1999999999] [https://c.example/]",
                            "Loaded stores: count [3]"))
        << count;
  }
}

TEST_F(GraphQLStorageApiTest, ANegativeCountReachesIndicesBeyondTheSignedNumbers) {
  fileHoldsStore("4294967293", makeStore("a"));
  fileHoldsStore("4294967294", makeStore("b"));
  fileHoldsStore("4294967295", makeStore("out"));
  fileHoldsStore("4294967296", makeStore("out"));
  fileHoldsCount("-1");
  EXPECT_THAT(urls(GraphQLStorageApi().storesList()),
              ElementsAre("https://a.example/", "https://b.example/"));
}

TEST_F(GraphQLStorageApiTest, AnIndexAtOrAboveTheCountIsNotRead) {
  fileHoldsStore("2", makeStore("a"));
  fileHoldsStore("3", makeStore("b"));
  fileHoldsCount("3");
  EXPECT_THAT(urls(GraphQLStorageApi().storesList()), ElementsAre("https://a.example/"));
}

TEST_F(GraphQLStorageApiTest, KeysThatOnlyLookLikeARecordsAddressAreNotFollowed) {
  for (const char* index : {"01", "+2", "3x", " 4", "-5", "99999999999999999999", "0x6"}) {
    fileHoldsStore(index, makeStore("a"));
  }
  platform().config.setText(kStoreListPath, "url", "https://a.example/");
  fileHoldsCount("-1");
  EXPECT_THAT(GraphQLStorageApi().storesList(), IsEmpty());
}

TEST_F(GraphQLStorageApiTest, ANullTextOfTheDeviceThrows) {
  fileHoldsStore("0", makeStore("a"));
  fileHoldsCount("1");
  for (const char* call : {"ReadString", "ReadSecret"}) {
    platform().failAt(call);
    EXPECT_THROW(GraphQLStorageApi(), std::logic_error) << call;
  }
}

// --- The current store ---------------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, WithoutStoresTheIndexIsZeroAndTheLookupsFindNothing) {
  const auto storage = makeStorage();
  EXPECT_EQ(storage->currentStoreIndex(), 0);
  expectEmptyRecord(storage->currentStore());
  expectEmptyRecord(storage->storeInfo("provider-a"));
}

TEST_F(GraphQLStorageApiTest, WithoutACurrentStoreTheIndexIsZeroButTheRecordIsEmpty) {
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a"), makeStore("b")});
  EXPECT_EQ(storage->currentStoreIndex(), 0);
  expectEmptyRecord(storage->currentStore());
}

TEST_F(GraphQLStorageApiTest, TheCurrentStoreMayBeTheFirst) {
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a"), makeStore("b")});
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "");
  EXPECT_EQ(storage->currentStoreIndex(), 0);
  EXPECT_EQ(storage->currentStore().storeName, "Store a");
}

TEST_F(GraphQLStorageApiTest, TheCurrentStoreIsFoundByAllThreePartsOfItsIdentity) {
  StoreInfo otherUrl = makeStore("b");
  otherUrl.url += "x";
  StoreInfo otherApiUrl = makeStore("b");
  otherApiUrl.apiUrl += "x";
  StoreInfo otherProvider = makeStore("b");
  otherProvider.providerID += "x";
  const auto storage = makeStorage();
  storage->setStoresList({otherUrl, otherApiUrl, otherProvider, makeStore("b")});
  storage->setTokens("access", "refresh", "3600", makeStore("b"), "");
  EXPECT_EQ(storage->currentStoreIndex(), 3);
  EXPECT_EQ(storage->currentStore().url, "https://b.example/");
}

TEST_F(GraphQLStorageApiTest, OfEqualStoresTheFirstIsFound) {
  StoreInfo second = makeStore("b");
  second.storeName = "second";
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a"), makeStore("b"), second});
  storage->setTokens("access", "refresh", "3600", makeStore("b"), "");
  EXPECT_EQ(storage->currentStoreIndex(), 1);
  EXPECT_EQ(storage->currentStore().storeName, "Store b");
  EXPECT_EQ(storage->storeInfo("provider-b").storeName, "Store b");
}

TEST_F(GraphQLStorageApiTest, AnEmptyRecordMatchesAnEmptyIdentity) {
  StoreInfo nameless;
  nameless.storeName = "nameless";
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a"), nameless});
  EXPECT_EQ(storage->currentStoreIndex(), 1);
  EXPECT_EQ(storage->currentStore().storeName, "nameless");
}

TEST_F(GraphQLStorageApiTest, AProviderIsFoundByExactlyItsIdentifier) {
  StoreInfo nameless = makeStore("c");
  nameless.providerID.clear();
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a"), makeStore("b"), nameless});
  EXPECT_EQ(storage->storeInfo("provider-b").storeName, "Store b");
  EXPECT_EQ(storage->storeInfo("").storeName, "Store c");
  expectEmptyRecord(storage->storeInfo("Provider-b"));
}

// --- The session ---------------------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, SettingTokensLogsTheStoreAndWritesTheFileInItsOrder) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "cache-id");
  EXPECT_THAT(
      platform().calls,
      ElementsAre("log 5 Store url: [https://a.example/]",
                  "log 5 Save tokens: empty [false] info [true]",
                  std::string("CfgWrapper ") + kTokenPath + " 1", "WriteSecret fakeAccess=access",
                  "WriteSecret fakeRefresh=refresh", "WriteSecret fakeExpiration=3600",
                  "WriteString storeUrl=https://a.example/",
                  "WriteString storeApiUrl=https://a.example/graphql",
                  "WriteString storeProvider=provider-a", "WriteSecret storeCacheId=cache-id",
                  "save", "~CfgWrapper"));
}

TEST_F(GraphQLStorageApiTest, LoadsTheSessionThatWasSaved) {
  deviceIsRegistered();
  const auto saving = makeStorage();
  saving->setStoresList({makeStore("a"), makeStore("b")});
  saving->setTokens("access", "refresh", "3600", makeStore("b"), "cache-id");

  GraphQLStorageApi storage;
  EXPECT_EQ(storage.accessToken(), "access");
  EXPECT_EQ(storage.refreshToken(), "refresh");
  EXPECT_EQ(storage.magentoCacheId(), "cache-id");
  EXPECT_EQ(storage.currentStoreIndex(), 1);
  EXPECT_TRUE(storage.isLoggedIn());
}

TEST_F(GraphQLStorageApiTest, LoadsTheSessionInTheOrderOfTheFile) {
  tokenFileHolds(makeStore("a"));
  const auto storage = makeStorage();
  storage->loadTokens();
  EXPECT_THAT(
      platform().callsOf({"CfgWrapper", "ReadSecret", "ReadString", "save", "saveAndClose",
                          "closeNoSave", "~CfgWrapper", "log"}),
      ElementsAre(std::string("CfgWrapper ") + kTokenPath + " 0", "ReadSecret fakeSac",
                  "ReadSecret fakeAccess", "ReadSecret fakeRefresh", "ReadSecret fakeExpiration",
                  "ReadString storeUrl", "ReadString storeApiUrl", "ReadString storeProvider",
                  "ReadSecret storeCacheId", "log 5 Load tokens: empty [false]", "closeNoSave",
                  "~CfgWrapper"));
}

TEST_F(GraphQLStorageApiTest, WithoutTheDevicesOwnTokenNothingIsLoaded) {
  tokenFileHolds(makeStore("a"));
  for (const bool absent : {true, false}) {
    if (absent) {
      tokenFile().erase("fakeSac");
    } else {
      platform().config.setSecret(kTokenPath, "fakeSac", "");
    }
    platform().log.clear();
    GraphQLStorageApi storage;
    EXPECT_EQ(storage.accessToken(), "");
    EXPECT_THAT(platform().logTexts(kInformationLevel), Contains("Load tokens: empty [true]"));
  }
}

TEST_F(GraphQLStorageApiTest, WithoutTheDevicesOwnTokenTheSessionInMemoryStays) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "cache-id");
  storage->reload();
  EXPECT_EQ(storage->accessToken(), "access");
  EXPECT_EQ(storage->magentoCacheId(), "cache-id");
  EXPECT_THAT(platform().logTexts(kInformationLevel), Contains("Load tokens: empty [false]"));
}

TEST_F(GraphQLStorageApiTest, LoadingReplacesTheSessionByEmptyTextsForAbsentKeys) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "cache-id");
  tokenFile().clear();
  deviceIsRegistered();
  storage->loadTokens();
  EXPECT_EQ(storage->accessToken() + storage->refreshToken() + storage->magentoCacheId(), "");
}

TEST_F(GraphQLStorageApiTest, AnIncompleteStoreKeepsTheIdentityAndTheCacheId) {
  const auto storage = makeStorage();
  storage->setStoresList({makeStore("a")});
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "cache-id");
  StoreInfo withoutEndpoint = makeStore("b");
  withoutEndpoint.apiUrl.clear();
  StoreInfo withoutAddress = makeStore("b");
  withoutAddress.url.clear();
  for (const StoreInfo& incomplete : {withoutEndpoint, withoutAddress, StoreInfo()}) {
    platform().log.clear();
    storage->setTokens("new access", "new refresh", "60", incomplete, "new cache-id");
    EXPECT_EQ(storage->currentStore().storeName, "Store a");
    EXPECT_EQ(storage->magentoCacheId(), "cache-id");
    EXPECT_EQ(tokenFile().at("fakeAccess"), "new access");
    EXPECT_EQ(tokenFile().at("fakeRefresh"), "new refresh");
    EXPECT_EQ(tokenFile().at("fakeExpiration"), "60");
    EXPECT_EQ(tokenFile().at("storeProvider"), "provider-a");
    EXPECT_EQ(tokenFile().at("storeCacheId"), "cache-id");
    EXPECT_THAT(platform().logTexts(kInformationLevel),
                ElementsAre("Save tokens: empty [false] info [true]"));
  }
}

TEST_F(GraphQLStorageApiTest, WithoutAStoreIdentityTokensLiveInMemoryOnly) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", StoreInfo(), "");
  EXPECT_EQ(storage->accessToken(), "access");
  EXPECT_TRUE(storage->isLoggedIn());
  EXPECT_THAT(platform().calls, ElementsAre("log 5 Save tokens: empty [false] info [false]"));
}

TEST_F(GraphQLStorageApiTest, AStoreWithoutAProviderIsTakenOverButNotSaved) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "cache-id");
  StoreInfo nameless = makeStore("b");
  nameless.providerID.clear();
  storage->setStoresList({makeStore("a"), nameless});
  storage->setTokens("new access", "refresh", "3600", nameless, "new cache-id");
  EXPECT_EQ(storage->currentStoreIndex(), 1);
  EXPECT_EQ(storage->magentoCacheId(), "new cache-id");
  EXPECT_EQ(tokenFile().at("fakeAccess"), "access");
  EXPECT_THAT(platform().logTexts(kInformationLevel),
              Contains("Save tokens: empty [false] info [false]"));
}

TEST_F(GraphQLStorageApiTest, ASessionWithoutAStoreApiAddressIsNotSaved) {
  tokenFileHolds(makeStore("a"));
  tokenFile().erase("storeApiUrl");
  const auto storage = makeStorage();
  storage->setTokens("new", "new", "60", StoreInfo(), "");
  EXPECT_THAT(platform().logTexts(kInformationLevel),
              ElementsAre("Save tokens: empty [false] info [false]"));
  EXPECT_EQ(tokenFile().at("fakeAccess"), "access");
}

TEST_F(GraphQLStorageApiTest, AnyEmptyTokenIsToldInTheLogAndStillSaved) {
  const std::string tokens[][3] = {{"", "r", "e"}, {"a", "", "e"}, {"a", "r", ""}};
  const auto storage = makeStorage();
  for (const auto& token : tokens) {
    platform().log.clear();
    storage->setTokens(token[0], token[1], token[2], makeStore("a"), "");
    EXPECT_THAT(platform().logTexts(kInformationLevel),
                Contains("Save tokens: empty [true] info [true]"));
    EXPECT_EQ(tokenFile().at("fakeAccess"), token[0]);
    EXPECT_EQ(tokenFile().at("fakeRefresh"), token[1]);
    EXPECT_EQ(tokenFile().at("fakeExpiration"), token[2]);
  }
}

TEST_F(GraphQLStorageApiTest, ACustomerIsSignedInWithAnyAccessTokenAlone) {
  const auto storage = makeStorage();
  EXPECT_FALSE(storage->isLoggedIn());
  storage->setTokens("access", "", "", StoreInfo(), "");
  EXPECT_TRUE(storage->isLoggedIn());
  storage->setTokens("", "refresh", "3600", StoreInfo(), "");
  EXPECT_FALSE(storage->isLoggedIn());
}

TEST_F(GraphQLStorageApiTest, SigningOutEmptiesTheTokensAndKeepsTheStore) {
  tokenFileHolds(makeStore("a"));
  makeStorage()->setStoresList({makeStore("a")});
  const auto storage = makeStorage();
  storage->logoutOnlyFromStore();
  EXPECT_FALSE(storage->isLoggedIn());
  EXPECT_EQ(storage->refreshToken(), "");
  EXPECT_EQ(storage->currentStore().storeName, "Store a");
  EXPECT_THAT(tokenFile(), UnorderedElementsAre(Pair("fakeSac", "device"), Pair("fakeAccess", ""),
                                                Pair("fakeRefresh", ""), Pair("fakeExpiration", ""),
                                                Pair("storeUrl", "https://a.example/"),
                                                Pair("storeApiUrl", "https://a.example/graphql"),
                                                Pair("storeProvider", "provider-a"),
                                                Pair("storeCacheId", "cache-id")));
}

TEST_F(GraphQLStorageApiTest, SavingKeepsTheKeysOfOtherPrograms) {
  platform().config.setText(kTokenPath, "theirs", "kept");
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "");
  EXPECT_EQ(tokenFile().at("theirs"), "kept");
}

TEST_F(GraphQLStorageApiTest, AFailedSaveChangesNoFileAndThrowsNothing) {
  const auto storage = makeStorage();
  platform().failAt("save");
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "");
  EXPECT_THAT(tokenFile(), IsEmpty());
  EXPECT_EQ(storage->accessToken(), "access");
}

TEST_F(GraphQLStorageApiTest, AnExceptionAmidAnySaveOfTokensReachesTheCaller) {
  const auto storage = makeStorage();
  for (const char* call : {"CfgWrapper", "WriteSecret", "WriteString", "save"}) {
    platform().throwAt(call);
    EXPECT_THROW(storage->setTokens("a", "r", "e", makeStore("a"), ""), fake::Failure) << call;
    EXPECT_THAT(tokenFile(), IsEmpty()) << call;
  }
}

// --- The log -------------------------------------------------------------------------------------

TEST_F(GraphQLStorageApiTest, LogLinesNameTheSourceFileAndTheFullSignature) {
  const auto storage = makeStorage();
  storage->saveStoreList();
  const fake::LogLine& line = platform().log.at(0);
  EXPECT_EQ(line.file, "graphql_api/GraphQLStorageApi.cpp");
  EXPECT_EQ(line.function, "void graphql::GraphQLStorageApi::saveStoreList()");
  EXPECT_GT(line.line, 0);
  EXPECT_EQ(line.format, "Save stores: count [%d]");
}
