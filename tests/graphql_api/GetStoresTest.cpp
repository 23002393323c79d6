// Store discovery, and the steps that all operations share.

#include <stdexcept>

#include <json/json.h>

#include "graphql_api/GraphQLApi.h"
#include "tests/support/PlatformTest.h"

using graphql::GraphQLApi;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;

namespace {

const char kBody[] =
    R"({"query":"query availableBookStores {\navailableBookStores {\nurl\napiUrl\nstoreName\n)"
    R"(language\nlangCode\nstoreCode\nstatus\nintegrationToken\nproviderID\ncurrency\n}\n}",)"
    R"("variables":null})"
    "\n";

// Two open stores around a closed one.
const char kThreeStores[] = R"({"data":{"availableBookStores":[
  {"status":true,"storeName":"Deutschland","url":"https://a.example/","apiUrl":"https://a.example/graphql",
   "language":"Deutsch","langCode":"de","storeCode":"de_de","integrationToken":"t-a","providerID":"p-a","currency":"EUR"},
  {"status":false,"storeName":"Closed","url":"https://b.example/","apiUrl":"https://b.example/graphql"},
  {"status":true,"storeName":"","url":"https://c.example/","apiUrl":"https://c.example/graphql",
   "language":"Polski","langCode":"pl","storeCode":"pl_pl","integrationToken":"","providerID":"p-c","currency":"PLN"}]}})";

// Compilers spell the signature of the operation differently.
::testing::Matcher<const std::string&> isSignature() {
  return AnyOf("graphql::GraphQLStorageApi::StoreInfoList graphql::GraphQLApi::getStores()",
               "GraphQLStorageApi::StoreInfoList graphql::GraphQLApi::getStores()");
}

class GetStoresTest : public PlatformTest {
 protected:
  GetStoresTest() {
    storage = makeStorage();
    storage->setStoresList({makeStore("old")});
    platform().calls.clear();
    platform().log.clear();
    api.reset(new GraphQLApi(storage));
    api->setErrorCb([](int err, int code) {
      platform().calls.push_back("callback " + std::to_string(err) + " " + std::to_string(code));
    });
  }

  StoreInfoList getStores(const std::string& answer) {
    platform().http.answer(200, answer);
    return api->getStores();
  }

  // One open store with these members.
  StoreInfo onlyStore(const std::string& members) {
    const StoreInfoList stores =
        getStores(R"({"data":{"availableBookStores":[{)" + members + "}]}}");
    return stores.size() == 1 ? stores[0] : StoreInfo();
  }

  void expectStoredListUntouched() {
    EXPECT_EQ(storage->storesList().at(0).storeName, "Store old");
    EXPECT_EQ(storeListFile().at("count"), "1");
    EXPECT_THAT(platform().callsOf({"CfgWrapper"}), IsEmpty());
  }

  // A response without the expected data: an empty list is returned and saved, and no failure
  // reported.
  void expectNoData(const std::string& answer) {
    storage->setStoresList({makeStore("old")});
    platform().log.clear();
    platform().calls.clear();
    EXPECT_THAT(getStores(answer), IsEmpty()) << answer;
    EXPECT_THAT(storage->storesList(), IsEmpty()) << answer;
    EXPECT_EQ(storeListFile().at("count"), "0") << answer;
    EXPECT_THAT(platform().callsOf({"callback"}), IsEmpty()) << answer;
    EXPECT_THAT(platform().logTexts(kFailureLevel), IsEmpty()) << answer;
  }

  std::shared_ptr<graphql::GraphQLStorageApi> storage;
  std::unique_ptr<GraphQLApi> api;
};

}  // namespace

// --- The request ---------------------------------------------------------------------------------

TEST_F(GetStoresTest, PostsTheQueryByteForByteToTheDefaultEndpoint) {
  getStores("{}");
  const fake::Request& request = platform().http.requests.at(0);
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.url, api->getGraphQLUrl());
  EXPECT_EQ(request.body, kBody);
  EXPECT_EQ(request.limit, 30);
}

TEST_F(GetStoresTest, AddressesTheGermanStoreWithoutCredentials) {
  storage->setTokens("access", "refresh", "3600", makeStore("a"), "");
  getStores("{}");
  const fake::Request& request = platform().http.requests.at(0);
  EXPECT_EQ(request.headers.size(), 7U);
  EXPECT_EQ(request.header("Authorization"), "");
  EXPECT_EQ(request.header("Store"), "de_de");
  EXPECT_EQ(request.header("Cookie"), "orvane-currency=EUR; orvane-locale=de; orvane-store=de_de");
}

TEST_F(GetStoresTest, BuildsTheBodyBeforeTheHeadersAndSendsThemOnce) {
  getStores("{}");
  const auto calls =
      platform().callsOf({"HttpRequest", "AddPostData", "AddHeader", "PerformRequest"});
  ASSERT_EQ(calls.size(), 10U);
  EXPECT_EQ(calls[0], "HttpRequest POST https://api.bookstore.example/graphql");
  EXPECT_EQ(calls[1], std::string("AddPostData ") + kBody);
  EXPECT_EQ(calls[2], "AddHeader Content-Type: application/json");
  EXPECT_EQ(calls[9], "PerformRequest 30");
}

// --- The result ----------------------------------------------------------------------------------

TEST_F(GetStoresTest, ReturnsTheOpenStoresInTheServersOrderAndKeepsThem) {
  const StoreInfoList stores = getStores(kThreeStores);
  ASSERT_EQ(stores.size(), 2U);
  EXPECT_EQ(stores[0].url, "https://a.example/");
  EXPECT_EQ(stores[1].url, "https://c.example/");
  EXPECT_EQ(storage->storesList().size(), 2U);
  EXPECT_EQ(storeListFile().at("count"), "2");
  EXPECT_EQ(storeListFile().at("url1"), "https://c.example/");
}

TEST_F(GetStoresTest, ReadsEveryMemberOfAStore) {
  const StoreInfo store = getStores(kThreeStores).at(0);
  EXPECT_TRUE(store.status);
  EXPECT_EQ(store.storeName, "Deutschland");
  EXPECT_EQ(store.url, "https://a.example/");
  EXPECT_EQ(store.apiUrl, "https://a.example/graphql");
  EXPECT_EQ(store.language, "Deutsch");
  EXPECT_EQ(store.langCode, "de");
  EXPECT_EQ(store.storeCode, "de_de");
  EXPECT_EQ(store.integrationToken, "t-a");
  EXPECT_EQ(store.providerID, "p-a");
  EXPECT_EQ(store.currency, "EUR");
}

TEST_F(GetStoresTest, AStoreWithoutANameIsNamedAfterItsLanguage) {
  EXPECT_EQ(onlyStore(R"("status":true,"storeName":"","language":"Polski")").storeName, "Polski");
  const StoreInfo missing = onlyStore(R"("status":true,"language":"Polski")");
  EXPECT_EQ(missing.storeName, "Polski");
  EXPECT_EQ(missing.language, "Polski");
  EXPECT_EQ(onlyStore(R"("status":true,"storeName":"","language":"")").storeName, "");
}

TEST_F(GetStoresTest, MissingAndNullMembersReadAsEmpty) {
  const StoreInfo store = onlyStore(R"("status":true,"url":null)");
  EXPECT_TRUE(store.status);
  EXPECT_EQ(store.url + store.apiUrl + store.currency, "");
}

TEST_F(GetStoresTest, NumbersAndBooleansBecomeTheirText) {
  const StoreInfo store = onlyStore(
      R"("status":true,"storeCode":1234567,"currency":true,"providerID":9.5,"langCode":-3)");
  EXPECT_EQ(store.storeCode, "1234567");
  EXPECT_EQ(store.currency, "true");
  EXPECT_EQ(store.providerID, "9.5");
  EXPECT_EQ(store.langCode, "-3");
}

TEST_F(GetStoresTest, AStatusThatIsANumberCounts) {
  EXPECT_EQ(onlyStore(R"("status":1,"url":"https://a.example/")").url, "https://a.example/");
  for (const char* closed : {R"("status":0)", R"("status":null)", R"("url":"x")"}) {
    EXPECT_THAT(getStores(std::string(R"({"data":{"availableBookStores":[{)") + closed + "}]}}"),
                IsEmpty())
        << closed;
  }
}

TEST_F(GetStoresTest, OfAClosedStoreNothingElseIsRead) {
  EXPECT_THAT(getStores(R"({"data":{"availableBookStores":[{"status":false,"url":{}}]}})"),
              IsEmpty());
}

TEST_F(GetStoresTest, StoresWithoutAddressesAreReturnedAndSavedAsTheyAre) {
  EXPECT_EQ(onlyStore(R"("status":true,"storeName":"x")").storeName, "x");
  EXPECT_EQ(storeListFile().at("count"), "1");
}

TEST_F(GetStoresTest, WithoutStorageTheResultIsReturnedAndNothingSaved) {
  platform().http.answer(200, kThreeStores);
  EXPECT_EQ(GraphQLApi(nullptr).getStores().size(), 2U);
  EXPECT_THAT(platform().callsOf({"CfgWrapper"}), IsEmpty());
}

TEST_F(GetStoresTest, LogsTheWholeAnswerBeforeTheStoresAreSaved) {
  getStores(R"({"data":{"availableBookStores":[]}})");
  const fake::LogLine& line = platform().log.at(0);
  EXPECT_EQ(line.level, kInformationLevel);
  EXPECT_EQ(line.file, "graphql_api/GraphQLApi.cpp");
  EXPECT_THAT(line.function, isSignature());
  EXPECT_EQ(line.format, "Stores responce: [%s]");
  Json::Value answer;
  answer["data"]["availableBookStores"] = Json::arrayValue;
  EXPECT_EQ(line.text, "Stores responce: [" + answer.toStyledString() + "]");
  EXPECT_EQ(platform().log.at(1).text, "Save stores: count [0]");
}

TEST_F(GetStoresTest, CommentsInTheAnswerReachTheLog) {
  getStores("// kept\n{}");
  EXPECT_EQ(platform().log.at(0).text, "Stores responce: [\n// kept\n{}\n]");
}

// --- Responses without the expected data ---------------------------------------------------------

TEST_F(GetStoresTest, AnAnswerWithoutAListOfStoresEmptiesTheStoredList) {
  for (const char* answer :
       {R"({"data":{"availableBookStores":[]}})", R"({"errors":[{"message":"m"}]})", "{}", "",
        R"({"data":null})", R"({"data":{}})", R"({"data":{"availableBookStores":null}})",
        R"({"data":{"availableBookStores":{"status":true}}})",
        R"({"data":{"availableBookStores":"text"}})",
        R"({"data":{"availableBookStores":[{"status":false}]}})"}) {
    expectNoData(answer);
  }
}

TEST_F(GetStoresTest, AnAnswerWhoseRootOrDataIsNoObjectHasNoData) {
  for (const char* answer :
       {"502 Bad Gateway", "[]", R"([{"data":{}}])", "5", "-1.5e3", "true", "null", "\"text\"",
        R"({"data":[]})", R"({"data":5})", R"({"data":"availableBookStores"})", R"({"data":true})",
        R"({"data":[{"availableBookStores":[]}]})", "<html><title>503</title></html>", "{",
        R"({"data":{"availableBookStores":)", "\xff\xfe", "\n\n"}) {
    expectNoData(answer);
  }
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(GetStoresTest, AFailedTransferIsLoggedThenToldAndLeavesTheStoredList) {
  platform().http.failTransfer(28);
  EXPECT_THAT(api->getStores(), IsEmpty());
  EXPECT_THAT(platform().callsOf({"log", "callback"}),
              ElementsAre("log 2 getStores failed err = 28, code = 0", "callback 28 0"));
  expectStoredListUntouched();
}

TEST_F(GetStoresTest, AStatusOtherThan200IsLoggedThenToldAndLeavesTheStoredList) {
  for (const long status : {100L, 201L, 204L, 301L, 401L, 500L, 503L}) {
    platform().calls.clear();
    platform().http.answer(status, kThreeStores);
    EXPECT_THAT(api->getStores(), IsEmpty());
    const std::string code = std::to_string(status);
    EXPECT_THAT(
        platform().callsOf({"log", "callback"}),
        ElementsAre("log 2 getStores failed err = 0, code = " + code, "callback 0 " + code));
    expectStoredListUntouched();
  }
}

TEST_F(GetStoresTest, AFailedTransferThatGotAStatusTellsBoth) {
  platform().http.failTransfer(18, 200, kThreeStores);
  EXPECT_THAT(api->getStores(), IsEmpty());
  EXPECT_THAT(platform().callsOf({"log", "callback"}),
              ElementsAre("log 2 getStores failed err = 18, code = 200", "callback 18 200"));
  expectStoredListUntouched();
}

TEST_F(GetStoresTest, TheFailureLineCarriesItsOwnFormatAndTheOperationsSignature) {
  platform().http.failTransfer(28);
  api->getStores();
  EXPECT_EQ(platform().log.at(0).format, "getStores failed err = %d, code = %d");
  EXPECT_THAT(platform().log.at(0).function, isSignature());
}

TEST_F(GetStoresTest, WithoutACallbackAFailureIsLoggedAllTheSame) {
  api->setErrorCb({});
  platform().http.failTransfer(28);
  EXPECT_THAT(api->getStores(), IsEmpty());
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre("getStores failed err = 28, code = 0"));
}

TEST_F(GetStoresTest, AStoreThatCannotBeConvertedThrowsAndLeavesTheStoredList) {
  for (const char* element :
       {"5", "\"text\"", "[]", R"({"status":"true"})", R"({"status":[]})", R"({"status":{}})",
        R"({"status":true,"url":{}})", R"({"status":true,"currency":[]})"}) {
    platform().calls.clear();
    EXPECT_THROW(getStores(std::string(R"({"data":{"availableBookStores":[)") + element + "]}}"),
                 Json::LogicError)
        << element;
    expectStoredListUntouched();
  }
}

TEST_F(GetStoresTest, AnAnswerNestedTooDeeplyThrowsAndLeavesTheStoredList) {
  EXPECT_THROW(getStores(std::string(1001, '[')), Json::RuntimeError);
  expectStoredListUntouched();
}

TEST_F(GetStoresTest, AnExceptionOfAnyPlatformCallReachesTheCaller) {
  for (const char* call : {"HttpRequest", "AddPostData", "AddHeader", "PerformRequest", "log"}) {
    platform().calls.clear();
    platform().throwAt(call);
    platform().http.answer(200, kThreeStores);
    EXPECT_THROW(api->getStores(), fake::Failure) << call;
    expectStoredListUntouched();
  }
}

TEST_F(GetStoresTest, AnExceptionAmidTheSaveLeavesTheFile) {
  for (const char* call : {"CfgWrapper", "WriteInt", "WriteSecret", "saveAndClose"}) {
    platform().throwAt(call);
    EXPECT_THROW(getStores(kThreeStores), fake::Failure) << call;
    EXPECT_EQ(storeListFile().at("count"), "1") << call;
  }
}
