// Sign-in and token refresh, and their four deliberate differences.

#include "tests/graphql_api/OperationTest.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

using LoginInfo = GraphQLStorageApi::LoginInfo;

const char kSignedIn[] =
    R"({"data":{"generateCustomerToken":{"token":"A","refresh_token":"R","expires_in":3600}}})";
const char kRefreshed[] =
    R"({"data":{"refreshTokens":{"access_token":"A","refresh_token":"R","expires_in":"60"}}})";
const char kRefusal[] =
    R"({"errors":[{"message":"Wrong."}],"data":{"generateCustomerToken":null}})";

class SessionTest : public OperationTest {
 protected:
  // A sign-in to the other store of the list.
  LoginInfo signIn() { return api.auth(other, "a@b.example", "pass"); }

  LoginInfo refresh() { return api.refreshTokens(store, "refresh"); }

  void expectLogin(const LoginInfo& login, const std::string& tokens, int error, int code,
                   const std::string& message) {
    EXPECT_EQ(login.accessToken + login.refreshToken + login.expiresIn, tokens);
    EXPECT_EQ(login.errorInfo.error, error);
    EXPECT_EQ(login.errorInfo.code, code);
    EXPECT_EQ(login.errorInfo.message, message);
  }

  // The session in memory and in the file.
  void expectSession(const std::string& access, const std::string& refreshToken,
                     const std::string& expiration, const StoreInfo& signedInTo,
                     const std::string& cacheId) {
    EXPECT_EQ(storage->accessToken(), access);
    EXPECT_EQ(storage->refreshToken(), refreshToken);
    EXPECT_EQ(storage->currentStore().url, signedInTo.url);
    EXPECT_EQ(storage->magentoCacheId(), cacheId);
    EXPECT_EQ(tokenFile().at("fakeAccess"), access);
    EXPECT_EQ(tokenFile().at("fakeRefresh"), refreshToken);
    EXPECT_EQ(tokenFile().at("fakeExpiration"), expiration);
    EXPECT_EQ(tokenFile().at("storeUrl"), signedInTo.url);
    EXPECT_EQ(tokenFile().at("storeCacheId"), cacheId);
  }

  const StoreInfo other = makeStore("other");
};

}  // namespace

// --- Sign-in: the request ------------------------------------------------------------------------

TEST_F(SessionTest, SignsInWithTheStoresToken) {
  api.auth(store, "a@b.example", "pass");
  expectRequest(
      "mutation generateCustomerToken($email: String!, $password: String!) {\n"
      "generateCustomerToken(email: $email, password: $password) {\n"
      "token\nrefresh_token\nexpires_in\n}\n}",
      "Bearer integration-a");
  EXPECT_EQ(Json::FastWriter().write(requestBody()["variables"]),
            "{\"email\":\"a@b.example\",\"password\":\"pass\"}\n");
}

TEST_F(SessionTest, ASignInTakesTheHeadersAndHasNoTimeLimit) {
  signIn();
  EXPECT_THAT(platform().callsOf({"PerformRequest", "PerformRequestWithHeaders"}),
              ElementsAre("PerformRequestWithHeaders no read no progress"));
}

TEST_F(SessionTest, ASignInLogsTheFinishedRequestUnmasked) {
  signIn();
  const std::vector<std::string> calls = platform().callsOf(
      {"AddPostData", "AddHeader", "toCurlRequest", "log", "PerformRequestWithHeaders"});
  ASSERT_EQ(calls.size(), 14U);
  EXPECT_EQ(calls[9], "toCurlRequest");
  EXPECT_EQ(calls[10], "log 5 curl request [curl " + request().url + " " + request().body + "]");
  EXPECT_THAT(calls[10], ::testing::HasSubstr("\"password\":\"pass\""));
  EXPECT_THAT(calls[11], StartsWith("PerformRequestWithHeaders"));
}

// --- Sign-in: the response -----------------------------------------------------------------------

TEST_F(SessionTest, ASignInStoresTokensStoreAndCacheId) {
  platform().http.answer(200, kSignedIn, {{"x-magento-cache-id", "c1"}});
  expectLogin(signIn(), "AR3600", 0, 0, "");
  expectSession("A", "R", "3600", other, "c1");
  EXPECT_THAT(effects(),
              ElementsAre(StartsWith("log 5 curl request ["), responseLine("Auth", kSignedIn),
                          "log 5 Store url: [https://other.example/]",
                          "log 5 Save tokens: empty [false] info [true]", "save"));
}

TEST_F(SessionTest, MissingMembersBesideTheTokenAreEmpty) {
  platform().http.answer(200, R"({"data":{"generateCustomerToken":{"token":"A"}}})");
  expectLogin(signIn(), "A", 0, 0, "");
  expectSession("A", "", "", other, "");
}

TEST_F(SessionTest, ALifetimeIsKeptAsTextWhateverItsKindAndSize) {
  for (const std::string lifetime :
       {"3600", "2147483648", "4294967296", "9223372036854775807", "18446744073709551615"}) {
    for (const std::string& given : {lifetime, '"' + lifetime + '"'}) {
      platform().http.answer(
          200, R"({"data":{"generateCustomerToken":{"token":"A","expires_in":)" + given + "}}}");
      EXPECT_EQ(signIn().expiresIn, lifetime);
      EXPECT_EQ(tokenFile().at("fakeExpiration"), lifetime);
    }
  }
}

TEST_F(SessionTest, AnEmptyTokenIsASuccessWithoutAToken) {
  platform().http.answer(200, R"({"data":{"generateCustomerToken":{"token":""}}})");
  expectLogin(signIn(), "", 0, 0, "");
  EXPECT_FALSE(storage->isLoggedIn());
}

TEST_F(SessionTest, ARefusedSignInEmptiesTheTokensAndTakesTheStore) {
  platform().http.answer(200, kRefusal, {{"x-magento-cache-id", "c1"}});
  expectLogin(signIn(), "", 1, 0, "Wrong.");
  expectSession("", "", "", other, "c1");
}

TEST_F(SessionTest, AnAnswerWithoutATokenEmptiesTheTokensWithoutAnError) {
  std::vector<std::string> answers(std::begin(kAnswersWithoutData), std::end(kAnswersWithoutData));
  answers.insert(answers.end(), {R"({"data":{"generateCustomerToken":[]}})",
                                 R"({"data":{"generateCustomerToken":"A"}})",
                                 R"({"data":{"generateCustomerToken":{}}})",
                                 R"({"data":{"generateCustomerToken":{"token":5}}})",
                                 R"({"data":{"generateCustomerToken":{"token":null}}})"});
  for (const std::string& answer : answers) {
    platform().http.answer(200, answer);
    expectLogin(signIn(), "", 0, 0, "");
    EXPECT_FALSE(storage->isLoggedIn()) << answer;
  }
  EXPECT_THAT(platform().callsOf({"callback"}), IsEmpty());
}

TEST_F(SessionTest, ARefreshTokenThatIsAnObjectThrowsAndLeavesTheSession) {
  platform().http.answer(200,
                         R"({"data":{"generateCustomerToken":{"token":"A","refresh_token":{}}}})");
  EXPECT_THROW(signIn(), Json::LogicError);
  expectSession("access", "refresh", "3600", store, "cache-id");
}

// --- Sign-in: the cache id -----------------------------------------------------------------------

TEST_F(SessionTest, TheCacheIdIsTrimmed) {
  platform().http.answer(200, kSignedIn, {{"x-magento-cache-id", " \t c 1\r\n"}});
  signIn();
  EXPECT_EQ(storage->magentoCacheId(), "c 1");
}

TEST_F(SessionTest, ACacheIdInAnotherLetterCaseIsNotTaken) {
  platform().http.answer(200, kSignedIn, {{"X-Magento-Cache-Id", "c1"}, {"x-magento-cache", "c2"}});
  signIn();
  expectSession("A", "R", "3600", other, "");
}

// --- Sign-in: failures ---------------------------------------------------------------------------

TEST_F(SessionTest, AFailedSignInIsToldThenEmptiesTheTokensThenIsLogged) {
  platform().http.failTransfer(7);
  expectLogin(signIn(), "", -1, 0, "");
  expectSession("", "", "", store, "cache-id");
  EXPECT_THAT(effects(), ElementsAre(StartsWith("log 5 curl request ["), "callback 7 0",
                                     "log 5 Save tokens: empty [true] info [true]", "save",
                                     "log 2 auth failed err = 7, code = 0"));
}

TEST_F(SessionTest, AnotherStatusOfASignInGivesTheCodeOfTheBody) {
  const std::pair<const char*, int> bodies[] = {{R"({"code":401})", 401},
                                                {R"({"code":-5})", -5},
                                                {R"({"code":null})", 0},
                                                {R"({"code":true})", 1},
                                                {"{}", 0},
                                                {"", 0},
                                                {"502 Bad Gateway", 0},
                                                {"[]", 0},
                                                {"\"code\"", 0},
                                                {R"({"errors":[{"message":"Wrong."}]})", 0}};
  for (const auto& body : bodies) {
    storage->setTokens("access", "refresh", "3600", store, "cache-id");
    forgetCalls();
    platform().http.answer(401, body.first, {{"x-magento-cache-id", "c1"}});
    expectLogin(signIn(), "", body.second, 0, "");
    expectSession("", "", "", store, "cache-id");
    EXPECT_THAT(platform().callsOf({"callback"}), ElementsAre("callback 0 401"));
    EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre("auth failed err = 0, code = 401"));
  }
}

TEST_F(SessionTest, ACodeThatIsATextThrowsAfterTheTokensWereEmptied) {
  for (const char* code : {"\"401\"", "{}", "[]"}) {
    storage->setTokens("access", "refresh", "3600", store, "cache-id");
    platform().http.answer(401, std::string(R"({"code":)") + code + "}");
    EXPECT_THROW(signIn(), Json::LogicError) << code;
    EXPECT_FALSE(storage->isLoggedIn());
  }
}

TEST_F(SessionTest, TheCodeOfAFailedTransferIsNotLookedAt) {
  platform().http.failTransfer(18, 200, R"({"code":"text"})");
  expectLogin(signIn(), "", -1, 0, "");
}

TEST_F(SessionTest, TheTokensAreEmptiedBeforeTheBodyOfAFailedSignInIsParsed) {
  platform().http.answer(500, std::string(1001, '['));
  EXPECT_THROW(signIn(), Json::RuntimeError);
  EXPECT_FALSE(storage->isLoggedIn());
  EXPECT_THAT(platform().logTexts(kFailureLevel), IsEmpty());
}

TEST_F(SessionTest, ASignInToAStoreWithoutAnEndpointEmptiesTheTokensOnly) {
  StoreInfo incomplete = other;
  incomplete.apiUrl.clear();
  EXPECT_EQ(api.auth(incomplete, "a", "p").errorInfo.error, -1);
  EXPECT_EQ(request().url, "");
  expectSession("", "", "", store, "cache-id");
}

// --- Refresh -------------------------------------------------------------------------------------

TEST_F(SessionTest, RefreshesWithTheStoresToken) {
  refresh();
  expectRequest(
      "mutation refreshTokens($refreshToken: String!) {\n"
      "refreshTokens(refresh_token: $refreshToken) {\n"
      "access_token\nrefresh_token\nexpires_in\n}\n}",
      "Bearer integration-a");
  EXPECT_EQ(Json::FastWriter().write(requestBody()["variables"]),
            "{\"refreshToken\":\"refresh\"}\n");
  EXPECT_EQ(request().limit, 30);
}

TEST_F(SessionTest, ARefreshReplacesTheTokensAndKeepsStoreAndCacheId) {
  platform().http.answer(200, kRefreshed, {{"x-magento-cache-id", "c1"}});
  expectLogin(refresh(), "AR60", 0, 0, "");
  expectSession("A", "R", "60", store, "cache-id");
  EXPECT_THAT(effects(), ElementsAre(responseLine("RefreshToken", kRefreshed),
                                     "log 5 Save tokens: empty [false] info [true]", "save"));
}

TEST_F(SessionTest, ARefreshAtAnotherStoreKeepsTheStoreToo) {
  platform().http.answer(200, kRefreshed);
  api.refreshTokens(other, "refresh");
  expectSession("A", "R", "60", store, "cache-id");
}

TEST_F(SessionTest, ARefusedRefreshEmptiesTheTokens) {
  platform().http.answer(200, R"({"errors":[{"message":"Used."}]})");
  expectLogin(refresh(), "", 1, 0, "Used.");
  expectSession("", "", "", store, "cache-id");
}

TEST_F(SessionTest, ARefreshWithoutATokenEmptiesTheTokensWithoutAnError) {
  std::vector<std::string> answers(std::begin(kAnswersWithoutData), std::end(kAnswersWithoutData));
  answers.insert(answers.end(), {R"({"data":{"refreshTokens":{"token":"A"}}})", kSignedIn,
                                 R"({"data":{"refreshTokens":{"access_token":5}}})",
                                 R"({"data":{"refreshTokens":[]}})"});
  for (const std::string& answer : answers) {
    storage->setTokens("access", "refresh", "3600", store, "cache-id");
    platform().http.answer(200, answer);
    expectLogin(refresh(), "", 0, 0, "");
    expectSession("", "", "", store, "cache-id");
  }
}

TEST_F(SessionTest, AFailedRefreshIsToldThenLoggedLikeASignInAndKeepsTheSession) {
  platform().http.failTransfer(28);
  expectLogin(refresh(), "", -1, 28, "");
  expectSession("access", "refresh", "3600", store, "cache-id");
  EXPECT_THAT(effects(), ElementsAre("callback 28 0", "log 2 auth failed err = 28, code = 0"));
}

TEST_F(SessionTest, AnotherStatusOfARefreshGivesTheCodeWhenThatIsAnInteger) {
  const std::pair<const char*, int> bodies[] = {{R"({"code":401})", 401},
                                                {R"({"code":0})", 0},
                                                {R"({"code":"401"})", 1},
                                                {R"({"code":null})", 1},
                                                {R"({"code":1.5})", 1},
                                                {R"({"code":{}})", 1},
                                                {R"({"code":true})", 1},
                                                {"{}", 1},
                                                {"502 Bad Gateway", 1},
                                                {"", 1},
                                                {"[401]", 1}};
  for (const auto& body : bodies) {
    forgetCalls();
    platform().http.answer(401, body.first);
    expectLogin(refresh(), "", body.second, 0, "");
    EXPECT_THAT(effects(), ElementsAre("callback 0 401", "log 2 auth failed err = 0, code = 401"))
        << body.first;
  }
  expectSession("access", "refresh", "3600", store, "cache-id");
}

TEST_F(SessionTest, TheBodyOfAFailedRefreshIsParsedBeforeTheLog) {
  platform().http.answer(500, std::string(1001, '['));
  EXPECT_THROW(refresh(), Json::RuntimeError);
  EXPECT_THAT(effects(), ElementsAre("callback 0 500"));
  expectSession("access", "refresh", "3600", store, "cache-id");
}

TEST_F(SessionTest, ARefreshDoesNotLogItsRequest) {
  refresh();
  EXPECT_THAT(platform().callsOf({"toCurlRequest"}), IsEmpty());
}

// --- Both ----------------------------------------------------------------------------------------

TEST_F(SessionTest, WithoutStorageTheResultIsReturnedAndNothingStored) {
  GraphQLApi alone(nullptr);
  platform().http.answer(200, kSignedIn);
  expectLogin(alone.auth(store, "a", "p"), "AR3600", 0, 0, "");
  platform().http.answer(200, kRefreshed);
  expectLogin(alone.refreshTokens(store, "r"), "AR60", 0, 0, "");
  expectLogin(alone.auth(store, "a", "p"), "", -1, 0, "");
  expectSession("access", "refresh", "3600", store, "cache-id");
}

TEST_F(SessionTest, WithoutACallbackFailuresGiveTheSameResults) {
  api.setErrorCb({});
  expectLogin(refresh(), "", -1, 7, "");
  expectLogin(signIn(), "", -1, 0, "");
}

TEST_F(SessionTest, AnExceptionOfAnyPlatformCallReachesTheCaller) {
  for (const char* call : {"HttpRequest", "AddPostData", "AddHeader", "toCurlRequest",
                           "PerformRequestWithHeaders", "trim", "save"}) {
    platform().http.answers.clear();
    platform().http.answer(200, kSignedIn, {{"x-magento-cache-id", "c1"}});
    platform().throwAt(call);
    EXPECT_THROW(signIn(), fake::Failure) << call;
    EXPECT_EQ(tokenFile().at("fakeAccess"), "access") << call;
  }
}

TEST_F(SessionTest, OddTextsReachTheBodyAsJson) {
  const std::string odd =
      "\"q\\ \n\t\x01 \xf0\x9f\x93\x9a</script>'`$(x)" + std::string(10000, 'x');
  api.auth(store, odd, odd);
  EXPECT_EQ(requestBody()["variables"]["email"].asString(), odd);
  EXPECT_EQ(requestBody()["variables"]["password"].asString(), odd);
}
