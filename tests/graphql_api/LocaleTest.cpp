// The library in a locale with another number format than JSON. A locale belongs to the whole
// process, so each test sets it in a new process.

#include <clocale>
#include <locale>

#include <json/json.h>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLHeader.h"
#include "tests/graphql_api/GermanLocale.h"
#include "tests/support/NewProcess.h"
#include "tests/support/PlatformTest.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;
using support::passesInNewProcess;

namespace {

// In C alone, or in C++, too.
class LocaleTest : public PlatformTest, public ::testing::WithParamInterface<bool> {
 protected:
  static void becomeGerman() { ::becomeGerman(GetParam()); }
};

}  // namespace

TEST_P(LocaleTest, KeysOfTheStoreListStayPlainNumbers) {
  EXPECT_TRUE(passesInNewProcess([this] {
    becomeGerman();
    makeStorage()->setStoresList(StoreInfoList(1200, makeStore("a")));
    EXPECT_EQ(storeListFile().at("count"), "1200");
    EXPECT_EQ(storeListFile().count("url1199"), 1U);
    // One record with a high index is enough to check how the index is read.
    storeListFile() = {{"count", "1200"}, {"url1199", "u"}, {"apiUrl1199", "a"}};
    EXPECT_EQ(GraphQLStorageApi().storesList().size(), 1U);
  }));
}

TEST_P(LocaleTest, TheUserAgentStaysAsItIs) {
  EXPECT_TRUE(passesInNewProcess([] {
    becomeGerman();
    graphql::graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(userAgent, "Orvane Reader/417(screen 1200x1600; FW 3.2.105)");
  }));
}

TEST_P(LocaleTest, AnAnswerIsReadAndLoggedAsEver) {
  EXPECT_TRUE(passesInNewProcess([] {
    becomeGerman();
    platform().http.answer(200, R"({"data":{"availableBookStores":[
        {"status":1.5,"storeCode":9.5,"providerID":1234567.25,"currency":12345678}]}})");
    const StoreInfoList stores = GraphQLApi(nullptr).getStores();
    ASSERT_EQ(stores.size(), 1U);
    EXPECT_EQ(stores[0].storeCode, "9.5");
    EXPECT_EQ(stores[0].providerID, "1234567.25");
    EXPECT_EQ(stores[0].currency, "12345678");
    EXPECT_THAT(platform().log.at(0).text, ::testing::HasSubstr("\"providerID\" : 1234567.25"));
  }));
}

TEST_P(LocaleTest, ReadingAnAnswerLeavesTheLocalesOfTheProcess) {
  EXPECT_TRUE(passesInNewProcess([] {
    becomeGerman();
    std::setlocale(LC_NUMERIC, "C");
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const std::string beforeInCpp = std::locale().name();
    GraphQLApi api(nullptr);
    platform().http.answer(200, "{}");
    api.getStores();
    platform().http.answer(200, std::string(1001, '['));
    EXPECT_THROW(api.getStores(), Json::RuntimeError);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
    EXPECT_EQ(std::locale().name(), beforeInCpp);
  }));
}

INSTANTIATE_TEST_SUITE_P(, LocaleTest, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& locale) {
                           return locale.param ? "InCAndCpp" : "InCAlone";
                         });
