// The class itself: the endpoint, the error callback, and the record for errors in a response.

#include "graphql_api/GraphQLApi.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <json/json.h>

#include "tests/support/PlatformTest.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

namespace {

class GraphQLApiTest : public PlatformTest {
 protected:
  static Json::Value parsed(const std::string& text) {
    Json::Value value;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
  }

  std::string errorMessage(const std::string& answer) {
    Json::Value response = parsed(answer);
    return api.getErrorMessage(response);
  }

  GraphQLStorageApi::ErrorInfo errorInfo(const std::string& answer) {
    Json::Value response = parsed(answer);
    return api.makeErrorInfo(response);
  }

  GraphQLApi api{nullptr};
};

}  // namespace

TEST_F(GraphQLApiTest, TheErrorValuesAreFixed) {
  EXPECT_EQ(GraphQLApi::Ok, 0);
  EXPECT_EQ(GraphQLApi::BadResponse, 3);
  EXPECT_EQ(GraphQLApi::NetworkError, 5);
  EXPECT_EQ(sizeof(GraphQLApi::ApiError), sizeof(int));
}

TEST_F(GraphQLApiTest, TheTokenTypesAreFixed) {
  EXPECT_EQ(GraphQLStorageApi::None, 0);
  EXPECT_EQ(GraphQLStorageApi::Integration, 1);
  EXPECT_EQ(GraphQLStorageApi::Customer, 2);
  EXPECT_EQ(GraphQLStorageApi::CustomerRefresh, 3);
  EXPECT_EQ(sizeof(GraphQLStorageApi::TokenType), sizeof(int));
}

TEST_F(GraphQLApiTest, ConstructionSharesTheStorageAndSendsNothing) {
  const auto storage = makeStorage();
  const GraphQLApi sharing(storage);
  EXPECT_EQ(storage.use_count(), 2);
  EXPECT_THAT(platform().calls, IsEmpty());
}

TEST_F(GraphQLApiTest, TheDefaultEndpointIsTheConfiguredHostOverHttps) {
  EXPECT_EQ(api.getGraphQLUrl(), "https://api.bookstore.example/graphql");
}

TEST_F(GraphQLApiTest, HeadersAreAddedInTheOrderOfTheirNames) {
  orvane::utilities::HttpRequest request("POST", "https://a.example/graphql");
  api.addGraphQLHeaders(request, makeStore("a"), GraphQLStorageApi::Integration);
  EXPECT_THAT(
      platform().callsOf({"AddHeader"}),
      ElementsAre("AddHeader Authorization: Bearer integration-a",
                  "AddHeader Content-Type: application/json",
                  "AddHeader Cookie: orvane-currency=EUR; orvane-locale=a; orvane-store=a_a",
                  "AddHeader Store: a_a",
                  "AddHeader User-Agent: Orvane Reader/417(screen 1200x1600; FW 3.2.105)",
                  "AddHeader x-header-deviceid: SN0001",
                  "AddHeader x-header-reader-model: eink 417",
                  "AddHeader x-header-software-version: 3.2.105"));
}

TEST_F(GraphQLApiTest, HeadersCarryTheTokenOfTheStorage) {
  const auto storage = makeStorage();
  storage->setTokens("access", "refresh", "3600", StoreInfo(), "");
  orvane::utilities::HttpRequest request("POST", "https://a.example/graphql");
  GraphQLApi(storage).addGraphQLHeaders(request, makeStore("a"), GraphQLStorageApi::Customer);
  EXPECT_EQ(platform().callsOf({"AddHeader"}).at(0), "AddHeader Authorization: Bearer access");
}

// --- The error callback --------------------------------------------------------------------------

TEST_F(GraphQLApiTest, AReplacedCallbackIsDestroyedAndNotCalled) {
  int firstCalls = 0;
  int secondCalls = 0;
  const auto held = std::make_shared<int>(0);
  api.setErrorCb([&firstCalls, held](int, int) { ++firstCalls; });
  EXPECT_EQ(held.use_count(), 2);
  api.setErrorCb([&secondCalls](int, int) { ++secondCalls; });
  EXPECT_EQ(held.use_count(), 1);
  api.getStores();
  EXPECT_EQ(firstCalls, 0);
  EXPECT_EQ(secondCalls, 1);
}

TEST_F(GraphQLApiTest, AnEmptyFunctionSwitchesTheCallbackOff) {
  int calls = 0;
  api.setErrorCb([&calls](int, int) { ++calls; });
  api.setErrorCb({});
  api.getStores();
  EXPECT_EQ(calls, 0);
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre("getStores failed err = 7, code = 0"));
}

TEST_F(GraphQLApiTest, ACallbackMayReplaceItself) {
  const auto held = std::make_shared<int>(0);
  api.setErrorCb([this, held](int, int) {
    api.setErrorCb({});
    EXPECT_EQ(held.use_count(), 2);  // this function also holds a reference
  });
  api.getStores();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(GraphQLApiTest, ACallbackThatReplacesItselfIsGoneAndTheNewOneIsCalled) {
  std::vector<std::string> called;
  const auto held = std::make_shared<int>(0);
  api.setErrorCb([&, held](int, int) {
    api.setErrorCb([&called](int, int) { called.push_back("second"); });
    called.push_back("first");
  });
  api.getStores();
  EXPECT_EQ(held.use_count(), 1);
  api.getStores();
  EXPECT_THAT(called, ElementsAre("first", "second"));
}

TEST_F(GraphQLApiTest, ACallbackMayReplaceItselfByAReference) {
  int calls = 0;
  GraphQLApi::ErrorCallback second = [&calls](int, int) { ++calls; };
  api.setErrorCb([this, &second](int, int) {
    GraphQLApi::ErrorCallback reference;
    reference = std::ref(second);
    api.setErrorCb(reference);
  });
  api.getStores();
  EXPECT_EQ(calls, 0);
  api.getStores();
  EXPECT_EQ(calls, 1);
}

TEST_F(GraphQLApiTest, ACallbackThatSwitchesItselfOffIsNotCalledAgain) {
  int calls = 0;
  api.setErrorCb([&](int, int) {
    ++calls;
    api.setErrorCb({});
  });
  api.getStores();
  api.getStores();
  EXPECT_EQ(calls, 1);
}

TEST_F(GraphQLApiTest, ACallbackKeepsItsStateFromFailureToFailure) {
  std::vector<int> seen;
  api.setErrorCb([&seen, calls = 0](int, int) mutable { seen.push_back(++calls); });
  api.getStores();
  api.getStores();
  EXPECT_THAT(seen, ElementsAre(1, 2));
}

TEST_F(GraphQLApiTest, AFailureDoesNotCopyTheCallback) {
  struct Counting {
    explicit Counting(int& counter) : copies(&counter) {}
    Counting(const Counting& other) : copies(other.copies) { ++*copies; }
    Counting& operator=(const Counting&) = delete;
    void operator()(int, int) const {}
    int* copies;
  };
  int copies = 0;
  api.setErrorCb(Counting(copies));
  const int before = copies;
  api.getStores();
  api.getStores();
  EXPECT_EQ(copies, before);
}

TEST_F(GraphQLApiTest, ACallbackIsToldOfTheFailureOfAnOperationThatItPerforms) {
  std::vector<int> seen;
  api.setErrorCb([this, &seen, depth = 0](int err, int) mutable {
    seen.push_back(err);
    if (++depth < 3) {
      api.getStores();
    }
  });
  platform().http.failTransfer(28);
  platform().http.failTransfer(6);
  platform().http.failTransfer(35);
  platform().http.failTransfer(52);
  api.getStores();
  EXPECT_THAT(seen, ElementsAre(28, 6, 35));
  api.getStores();
  EXPECT_THAT(seen, ElementsAre(28, 6, 35, 52));
}

TEST_F(GraphQLApiTest, AnExceptionOfTheCallbackReachesTheCallerAndTheCallbackStays) {
  int calls = 0;
  api.setErrorCb([&calls](int, int) {
    ++calls;
    throw std::domain_error("callback");
  });
  EXPECT_THROW(api.getStores(), std::domain_error);
  EXPECT_THROW(api.getStores(), std::domain_error);
  EXPECT_EQ(calls, 2);
}

// --- The request ---------------------------------------------------------------------------------

TEST_F(GraphQLApiTest, TheRequestOfEachOperationLivesUntilItReturns) {
  const auto storage = makeStorage();
  GraphQLApi operations(storage);
  const StoreInfo store = makeStore("a");
  bool available = false;
  GraphQLStorageApi::UserInfo user;
  const std::function<void()> all[] = {
      [&] { operations.getStores(); },
      [&] { operations.auth(store, "e", "p"); },
      [&] { operations.refreshTokens(store, "r"); },
      [&] { operations.isEmailAvailable(store, "e", &available); },
      [&] { operations.createAccount(store, "e", "p", "f", "l", true); },
      [&] { operations.resetPassword(store, "e"); },
      [&] { operations.userInfo(store, &user); },
      [&] { operations.sampleMetadata(store, "u"); },
      [&] { operations.samplePriceRefresh(store, "u"); },
  };
  for (const auto& operation : all) {
    platform().http.answer(200, "{}");
    platform().calls.clear();
    operation();
    EXPECT_EQ(platform().calls.front(), "HttpRequest POST " + platform().http.requests.back().url);
    EXPECT_EQ(platform().calls.back(), "~HttpRequest");
  }
}

// --- Errors in a response ------------------------------------------------------------------------

TEST_F(GraphQLApiTest, TheFirstMessageIsTheErrorMessage) {
  EXPECT_EQ(errorMessage(R"({"errors":[{"message":"one"},{"message":"two"}]})"), "one");
}

TEST_F(GraphQLApiTest, AnErrorWithoutAMessageIsPassedOver) {
  const auto info = errorInfo(R"({"errors":[{"path":["a"]},{"message":"two"}]})");
  EXPECT_EQ(info.error, 1);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.message, "two");
}

TEST_F(GraphQLApiTest, AnErrorThatIsNoObjectHasNoMessage) {
  EXPECT_EQ(errorMessage(R"({"errors":[5,"text",null,["message"],{"message":"last"}]})"), "last");
}

TEST_F(GraphQLApiTest, WithoutAListOfErrorsThereIsNoMessage) {
  for (const char* answer : {"{}", R"({"errors":{"message":"m"}})", R"({"errors":"m"})",
                             R"({"errors":[]})", R"({"errors":null})", R"({"errors":[{}]})",
                             R"([{"errors":[{"message":"m"}]}])", "502", "null", "\"text\"", ""}) {
    const auto info = errorInfo(answer);
    EXPECT_EQ(info.error, 0) << answer;
    EXPECT_EQ(info.code, 0) << answer;
    EXPECT_EQ(info.message, "") << answer;
  }
}

TEST_F(GraphQLApiTest, AnEmptyMessageIsNoError) {
  // The first message counts, even if it is empty.
  EXPECT_EQ(errorInfo(R"({"errors":[{"message":""},{"message":"two"}]})").error, 0);
}

TEST_F(GraphQLApiTest, AMessageThatIsANumberBecomesItsText) {
  EXPECT_EQ(errorMessage(R"({"errors":[{"message":404}]})"), "404");
}

TEST_F(GraphQLApiTest, AMessageThatIsAnObjectThrows) {
  EXPECT_THROW(errorMessage(R"({"errors":[{"message":{}}]})"), Json::LogicError);
  EXPECT_THROW(errorInfo(R"({"errors":[{"message":[]}]})"), Json::LogicError);
}
