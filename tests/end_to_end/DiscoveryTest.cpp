// Store discovery with the real library, the real host and a real store service over HTTPS.

#include <thread>

#include "tests/support/EndToEndTest.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::SizeIs;

namespace {

using Stores = graphql::GraphQLStorageApi::StoreInfoList;

class DiscoveryTest : public support::EndToEndTest {
 protected:
  // A state with stores, which a failure could lose.
  std::unique_ptr<graphql::GraphQLApi> apiWithStores() {
    auto api = makeApi();
    EXPECT_THAT(api->getStores(), SizeIs(5));
    kept_ = storage->storesList();
    files_ = support::contentOf(root());
    return api;
  }

  // No stores, one callback, one log line, and unchanged state and files.
  void expectFailure(const Stores& stores, int err, int code) {
    EXPECT_THAT(stores, IsEmpty());
    EXPECT_THAT(failures, ElementsAre(Pair(err, code)));
    EXPECT_THAT(logged("getStores failed"),
                ElementsAre("getStores failed err = " + std::to_string(err) +
                            ", code = " + std::to_string(code)));
    EXPECT_THAT(storage->storesList(), SizeIs(kept_.size()));
    EXPECT_EQ(support::contentOf(root()), files_);
  }

  void expectEmptied(const Stores& stores) {
    EXPECT_THAT(stores, IsEmpty());
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(graphql::GraphQLStorageApi().storesList(), IsEmpty());
  }

 private:
  Stores kept_;
  std::vector<std::pair<std::string, std::string>> files_;
};

}  // namespace

TEST_F(DiscoveryTest, FindsTheOpenStoresAndKeepsThemForTheNextStart) {
  const Stores found = makeApi()->getStores();
  ASSERT_THAT(found, SizeIs(5));
  const Stores loaded = graphql::GraphQLStorageApi().storesList();
  ASSERT_EQ(loaded.size(), found.size());
  for (std::size_t index = 0; index < found.size(); ++index) {
    EXPECT_EQ(loaded[index].storeName, found[index].storeName);
    EXPECT_EQ(loaded[index].apiUrl, found[index].apiUrl);
    EXPECT_EQ(loaded[index].integrationToken, found[index].integrationToken);
    EXPECT_TRUE(loaded[index].status);
  }
}

TEST_F(DiscoveryTest, SendsTheSameRequestOverBothVersionsOfHttp) {
  auto api = makeApi();
  api->getStores();
  set("ORVANE_HTTP_VERSION", "2");
  // A kept connection keeps its version, and connections belong to a thread.
  std::thread([&] { EXPECT_THAT(api->getStores(), SizeIs(5)); }).join();
  const Json::Value requests = store().requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0]["httpVersion"].asString(), "1.1");
  EXPECT_EQ(requests[1]["httpVersion"].asString(), "2.0");
  EXPECT_EQ(requests[0]["body"], requests[1]["body"]);
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(DiscoveryTest, AsksAgainOnTheSameConnection) {
  auto api = makeApi();
  api->getStores();
  makeApi()->getStores();
  const Json::Value requests = store().requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0]["connection"], requests[1]["connection"]);
}

TEST_F(DiscoveryTest, OlderServersAnswerTheSame) {
  store().reset("old");
  EXPECT_THAT(makeApi()->getStores(), SizeIs(5));
}

TEST_F(DiscoveryTest, AStoppedServerIsAFailedTransfer) {
  auto api = apiWithStores();
  store().stop();
  const Stores stores = api->getStores();
  store().start();
  expectFailure(stores, 7, 0);
}

TEST_F(DiscoveryTest, AnUntrustedCertificateIsAFailedTransfer) {
  auto api = apiWithStores();
  set("ORVANE_CA_FILE", "");
  store().stop();
  store().start();
  set("ORVANE_CONNECT_TO", store().connectTo());
  expectFailure(api->getStores(), 60, 0);
  EXPECT_EQ(store().requests().size(), 0U);
}

TEST_F(DiscoveryTest, AConnectionWithoutAnAnswerIsAFailedTransfer) {
  auto api = apiWithStores();
  store().addFault(R"({"drop":true})");
  const Stores stores = api->getStores();
  ASSERT_THAT(failures, SizeIs(1));
  EXPECT_NE(failures[0].first, 0);
  expectFailure(stores, failures[0].first, 0);
}

TEST_F(DiscoveryTest, AnAnswerThatIsCutShortIsAFailedTransfer) {
  auto api = apiWithStores();
  store().addFault(R"({"cutAfterBytes":100})");
  const Stores stores = api->getStores();
  ASSERT_THAT(failures, SizeIs(1));
  EXPECT_NE(failures[0].first, 0);
  expectFailure(stores, failures[0].first, failures[0].second);
}

TEST_F(DiscoveryTest, AStatusOtherThan200IsAFailure) {
  auto api = apiWithStores();
  for (const int status : {500, 503, 404, 302}) {
    SCOPED_TRACE(status);
    store().addFault(R"({"times":1,"headers":{"Location":"https://elsewhere.example/"},"status":)" +
                     std::to_string(status) + "}");
    const Stores stores = api->getStores();
    EXPECT_THAT(stores, IsEmpty());
    EXPECT_EQ(failures.back(), std::make_pair(0, status));
  }
  EXPECT_THAT(logged("getStores failed"),
              ElementsAre(HasSubstr("err = 0, code = 500"), HasSubstr("err = 0, code = 503"),
                          HasSubstr("err = 0, code = 404"), HasSubstr("err = 0, code = 302")));
  EXPECT_THAT(graphql::GraphQLStorageApi().storesList(), SizeIs(5));
}

TEST_F(DiscoveryTest, ABodyThatIsNotJsonEmptiesTheList) {
  auto api = apiWithStores();
  store().addFault(R"({"body":"<html><h1>502 Bad Gateway</h1></html>"})");
  expectEmptied(api->getStores());
}

TEST_F(DiscoveryTest, ABodyThatIsANumberEmptiesTheList) {
  auto api = apiWithStores();
  store().addFault(R"({"body":"502 Bad Gateway"})");
  expectEmptied(api->getStores());
}

TEST_F(DiscoveryTest, AnEndlessBodyIsAFailedTransfer) {
  auto api = apiWithStores();
  set("ORVANE_MAX_ANSWER_BYTES", "100000");
  store().addFault(R"({"endless":true})");
  const Stores stores = api->getStores();
  ASSERT_THAT(failures, SizeIs(1));
  EXPECT_NE(failures[0].first, 0);
  expectFailure(stores, failures[0].first, failures[0].second);
}

TEST_F(DiscoveryTest, ADrippingBodyIsGivenUpAfterTheTimeLimit) {
  auto api = apiWithStores();
  store().addFault(R"({"drip":{"bytes":1,"intervalMilliseconds":500}})");
  const Stores stores = api->getStores();
  ASSERT_THAT(failures, SizeIs(1));
  expectFailure(stores, 28, failures[0].second);
}

TEST_F(DiscoveryTest, TheQueryIsValidForTheServersSchema) {
  makeApi()->getStores();
  EXPECT_EQ(store().requests()[0]["operation"].asString(), "availableBookStores");
  EXPECT_THAT(logged("Stores responce: ["), ElementsAre(Not(HasSubstr("errors"))));
}
