// The customer's account: email availability, registration, password reset, profile.

#include "tests/graphql_api/OperationTest.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using AccountTest = OperationTest;

namespace {

void expectError(const GraphQLStorageApi::ErrorInfo& info, int error, int code,
                 const std::string& message) {
  EXPECT_EQ(info.error, error);
  EXPECT_EQ(info.code, code);
  EXPECT_EQ(info.message, message);
}

const char kRefusal[] = R"({"errors":[{"message":"No."}],"data":null})";

}  // namespace

// --- E-mail availability -------------------------------------------------------------------------

TEST_F(AccountTest, AsksForAnEMailWithoutCredentials) {
  bool available = false;
  api.isEmailAvailable(store, "a@b.example", &available);
  expectRequest(
      "query isEmailAvailable($email: String!) {\nisEmailAvailable(email: $email) {\n"
      "is_email_available\n}\n}",
      "");
  EXPECT_EQ(Json::FastWriter().write(requestBody()["variables"]), "{\"email\":\"a@b.example\"}\n");
  EXPECT_EQ(request().limit, 30);
}

TEST_F(AccountTest, TellsWhetherAnEMailIsAvailable) {
  for (const bool expected : {true, false}) {
    const std::string answer =
        std::string(R"({"data":{"isEmailAvailable":{"is_email_available":)") +
        (expected ? "true" : "false") + "}}}";
    platform().http.answer(200, answer);
    forgetCalls();
    bool available = !expected;
    EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::Ok);
    EXPECT_EQ(available, expected);
    EXPECT_THAT(effects(), ElementsAre(responseLine("IsEmailAvailable", answer)));
  }
}

TEST_F(AccountTest, AMissingFlagReadsAsNotAvailable) {
  for (const char* result : {"{}", "null", R"({"is_email_available":null})"}) {
    platform().http.answer(200, std::string(R"({"data":{"isEmailAvailable":)") + result + "}}");
    bool available = true;
    EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::Ok) << result;
    EXPECT_FALSE(available) << result;
  }
}

TEST_F(AccountTest, AnAvailabilityThatIsNeitherAnObjectNorNullThrowsAndLeavesTheOutput) {
  for (const char* result : {"5", "1.5", "true", "\"text\"", "[]"}) {
    platform().http.answer(200, std::string(R"({"data":{"isEmailAvailable":)") + result + "}}");
    bool available = true;
    EXPECT_THROW(api.isEmailAvailable(store, "a", &available), Json::LogicError) << result;
    EXPECT_TRUE(available) << result;
  }
}

TEST_F(AccountTest, AFlagThatIsATextThrowsAndLeavesTheOutput) {
  platform().http.answer(200, R"({"data":{"isEmailAvailable":{"is_email_available":"true"}}})");
  bool available = true;
  EXPECT_THROW(api.isEmailAvailable(store, "a", &available), Json::LogicError);
  EXPECT_TRUE(available);
}

TEST_F(AccountTest, AnAnswerAboutNoEMailIsABadResponse) {
  for (const char* answer : kAnswersWithoutData) {
    platform().http.answer(200, answer);
    bool available = true;
    EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::BadResponse) << answer;
    EXPECT_TRUE(available) << answer;
  }
  EXPECT_THAT(platform().callsOf({"callback"}), IsEmpty());
}

TEST_F(AccountTest, AFailedTransferOfAnEMailQueryIsLoggedLikeDiscoveryThenTold) {
  platform().http.failTransfer(28, 0);
  bool available = true;
  EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::NetworkError);
  EXPECT_TRUE(available);
  EXPECT_THAT(effects(), ElementsAre("log 2 getStores failed err = 28, code = 0", "callback 28 0"));
}

TEST_F(AccountTest, AnotherStatusOfAnEMailQueryIsSilent) {
  for (const long status : {500L, 401L, 201L}) {
    platform().http.answer(status, R"({"data":{"isEmailAvailable":{"is_email_available":true}}})");
    bool available = false;
    EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::BadResponse);
    EXPECT_FALSE(available);
  }
  EXPECT_THAT(effects(), IsEmpty());
}

// --- Registration --------------------------------------------------------------------------------

TEST_F(AccountTest, RegistersACustomerWithTheStoresToken) {
  api.createAccount(store, "a@b.example", "pass", "Ada", "Byron", true);
  expectRequest(
      "mutation createCustomer($input: CustomerCreateInput!) {\n"
      "createCustomerV2(input: $input) {\ncustomer {\ndate_of_birth\ndefault_billing\n"
      "default_shipping\nemail\nfirstname\nis_subscribed\nsubscribe_status\nlastname\nmiddlename\n"
      "prefix\nsuffix\ntaxvat\naddresses {\ncity\ncountry_code\ndefault_billing\n"
      "default_shipping\nextension_attributes {\nattribute_code\nvalue\n}\nfirstname\nid\n"
      "lastname\npostcode\nprefix\nregion {\nregion_code\nregion_id\nregion\n}\nstreet\nsuffix\n"
      "telephone\nvat_id\n}\n}\n}\n}",
      "Bearer integration-a");
  EXPECT_EQ(Json::FastWriter().write(requestBody()["variables"]),
            R"({"input":{"email":"a@b.example","firstname":"Ada","is_subscribed":true,)"
            R"("lastname":"Byron","password":"pass"}})"
            "\n");
  EXPECT_EQ(request().limit, 30);
}

TEST_F(AccountTest, ARegistrationWithoutErrorsSucceeds) {
  const std::string answer = R"({"data":{"createCustomerV2":{"customer":{"email":"a"}}}})";
  platform().http.answer(200, answer);
  expectError(api.createAccount(store, "a", "p", "f", "l", false), 0, 0, "");
  EXPECT_THAT(effects(), ElementsAre(responseLine("Create account", answer)));
}

TEST_F(AccountTest, AMessageMakesARegistrationFailEvenWithACustomer) {
  platform().http.answer(200, R"({"errors":[{"message":"No."}],"data":{"createCustomerV2":{}}})");
  expectError(api.createAccount(store, "a", "p", "f", "l", false), 1, 0, "No.");
}

TEST_F(AccountTest, AMessageOfARegistrationThatIsNotATextThrowsBeforeTheAnswerIsLogged) {
  platform().http.answer(200, R"({"errors":[{"message":{}}]})");
  EXPECT_THROW(api.createAccount(store, "a", "p", "f", "l", false), Json::LogicError);
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(AccountTest, ARegistrationWithoutDataIsTakenFromTheErrorsAlone) {
  for (const char* answer : kAnswersWithoutData) {
    platform().http.answer(200, answer);
    expectError(api.createAccount(store, "a", "p", "f", "l", false), 0, 0, "");
  }
}

TEST_F(AccountTest, AFailedRegistrationIsLoggedThenTold) {
  platform().http.failTransfer(28, 0);
  expectError(api.createAccount(store, "a", "p", "f", "l", false), -1, 28, "");
  platform().http.answer(500, kRefusal);
  expectError(api.createAccount(store, "a", "p", "f", "l", false), -1, 500, "");
  platform().http.failTransfer(18, 200, kRefusal);
  expectError(api.createAccount(store, "a", "p", "f", "l", false), -1, 18, "");
  EXPECT_THAT(effects(),
              ElementsAre("log 2 createAccount failed err = 28, code = 0", "callback 28 0",
                          "log 2 createAccount failed err = 0, code = 500", "callback 0 500",
                          "log 2 createAccount failed err = 18, code = 200", "callback 18 200"));
}

// --- Password reset ------------------------------------------------------------------------------

TEST_F(AccountTest, AsksForAPasswordResetWithTheStoresToken) {
  api.resetPassword(store, "a@b.example");
  expectRequest(
      "mutation requestPasswordResetEmail($email: String!) {\n"
      "requestPasswordResetEmail(email: $email)\n}",
      "Bearer integration-a");
  EXPECT_EQ(Json::FastWriter().write(requestBody()["variables"]), "{\"email\":\"a@b.example\"}\n");
  EXPECT_EQ(request().limit, 30);
}

TEST_F(AccountTest, AMailedResetSucceedsWithoutAnAnswerInTheLog) {
  platform().http.answer(200, R"({"data":{"requestPasswordResetEmail":true}})");
  expectError(api.resetPassword(store, "a"), 0, 0, "");
  EXPECT_THAT(effects(), IsEmpty());
}

TEST_F(AccountTest, AMailedResetSucceedsEvenWithAMessage) {
  platform().http.answer(
      200, R"({"errors":[{"message":"No."}],"data":{"requestPasswordResetEmail":true}})");
  expectError(api.resetPassword(store, "a"), 0, 0, "");
}

TEST_F(AccountTest, ARefusedResetIsTakenFromTheErrors) {
  platform().http.answer(200, R"({"data":{"requestPasswordResetEmail":false}})");
  expectError(api.resetPassword(store, "a"), 0, 0, "");
  platform().http.answer(200, kRefusal);
  expectError(api.resetPassword(store, "a"), 1, 0, "No.");
  for (const char* answer : kAnswersWithoutData) {
    platform().http.answer(200, answer);
    expectError(api.resetPassword(store, "a"), 0, 0, "");
  }
}

TEST_F(AccountTest, AResetAnsweredByATextThrows) {
  platform().http.answer(200, R"({"data":{"requestPasswordResetEmail":"true"}})");
  EXPECT_THROW(api.resetPassword(store, "a"), Json::LogicError);
}

TEST_F(AccountTest, AFailedTransferOfAResetIsLoggedButNotTold) {
  platform().http.failTransfer(28, 0);
  expectError(api.resetPassword(store, "a"), -1, 28, "");
  EXPECT_THAT(effects(), ElementsAre("log 2 Recovery password failed err = 28, code = 0"));
}

TEST_F(AccountTest, AnotherStatusOfAResetIsToldThenLogged) {
  platform().http.answer(500, kRefusal);
  expectError(api.resetPassword(store, "a"), -1, 500, "");
  EXPECT_THAT(effects(),
              ElementsAre("callback 0 500", "log 2 Recovery password failed err = 0, code = 500"));
}

TEST_F(AccountTest, TheBodyOfAFailedResetIsParsedBeforeTheLog) {
  platform().http.answer(500, std::string(1001, '['));
  EXPECT_THROW(api.resetPassword(store, "a"), Json::RuntimeError);
  EXPECT_THAT(effects(), ElementsAre("callback 0 500"));
}

// --- Profile -------------------------------------------------------------------------------------

TEST_F(AccountTest, AsksForTheProfileWithTheCustomersToken) {
  GraphQLStorageApi::UserInfo info;
  api.userInfo(store, &info);
  expectRequest("query customer {\ncustomer {\nemail\nfirstname\nlastname\n}\n}", "Bearer access");
  EXPECT_TRUE(requestBody().isMember("variables"));
  EXPECT_TRUE(requestBody()["variables"].isNull());
  EXPECT_EQ(request().header("RefreshToken"), "");
  EXPECT_EQ(request().limit, 30);
}

TEST_F(AccountTest, ReadsTheProfile) {
  const std::string answer =
      R"({"data":{"customer":{"email":"a@b.example","firstname":"Ada","lastname":null}}})";
  platform().http.answer(200, answer);
  GraphQLStorageApi::UserInfo info{"x", "y", "z"};
  EXPECT_EQ(api.userInfo(store, &info), GraphQLApi::Ok);
  EXPECT_EQ(info.email, "a@b.example");
  EXPECT_EQ(info.firstname, "Ada");
  EXPECT_EQ(info.lastname, "");
  EXPECT_THAT(effects(), ElementsAre(responseLine("UserInfo", answer)));
}

TEST_F(AccountTest, WithoutACustomerTheProfileIsLeft) {
  std::vector<std::string> answers(std::begin(kAnswersWithoutData), std::end(kAnswersWithoutData));
  answers.insert(answers.end(), {R"({"data":{"customer":null}})", R"({"data":{"customer":[]}})",
                                 R"({"data":{"customer":"a"}})", kRefusal});
  for (const std::string& answer : answers) {
    platform().http.answer(200, answer);
    GraphQLStorageApi::UserInfo info{"x", "y", "z"};
    EXPECT_EQ(api.userInfo(store, &info), GraphQLApi::BadResponse) << answer;
    EXPECT_EQ(info.email + info.firstname + info.lastname, "xyz") << answer;
  }
  EXPECT_THAT(platform().callsOf({"callback"}), IsEmpty());
}

TEST_F(AccountTest, AFailedTransferOfTheProfileIsLoggedButNotTold) {
  platform().http.failTransfer(28, 0);
  GraphQLStorageApi::UserInfo info;
  EXPECT_EQ(api.userInfo(store, &info), GraphQLApi::NetworkError);
  EXPECT_THAT(effects(), ElementsAre("log 2 UserInfo failed err = 28, code = 0"));
}

TEST_F(AccountTest, AnotherStatusOfTheProfileIsToldThenLogged) {
  for (const char* body : {R"({"code":"not a number"})", R"({"code":{}})", "502 Bad Gateway", "",
                           "[]", R"({"data":{"customer":{"email":"a"}}})"}) {
    forgetCalls();
    platform().http.answer(401, body);
    GraphQLStorageApi::UserInfo info{"x", "y", "z"};
    EXPECT_EQ(api.userInfo(store, &info), GraphQLApi::BadResponse) << body;
    EXPECT_EQ(info.email, "x");
    EXPECT_THAT(effects(),
                ElementsAre("callback 0 401", "log 2 UserInfo failed err = 0, code = 401"));
  }
}

// --- All four operations -------------------------------------------------------------------------

TEST_F(AccountTest, NoAccountOperationTouchesTheSession) {
  bool available = false;
  GraphQLStorageApi::UserInfo info;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; round == 1 && i < 4; ++i) {
      platform().http.answer(401, kRefusal);
    }
    api.isEmailAvailable(store, "a", &available);
    api.createAccount(store, "a", "p", "f", "l", false);
    api.resetPassword(store, "a");
    api.userInfo(store, &info);
  }
  EXPECT_EQ(storage->accessToken(), "access");
  EXPECT_THAT(platform().callsOf({"CfgWrapper"}), IsEmpty());
}

TEST_F(AccountTest, WithoutACallbackFailuresGiveTheSameResults) {
  api.setErrorCb({});
  bool available = false;
  GraphQLStorageApi::UserInfo info;
  EXPECT_EQ(api.isEmailAvailable(store, "a", &available), GraphQLApi::NetworkError);
  expectError(api.createAccount(store, "a", "p", "f", "l", false), -1, 7, "");
  platform().http.answer(500, "");
  expectError(api.resetPassword(store, "a"), -1, 500, "");
  platform().http.answer(500, "");
  EXPECT_EQ(api.userInfo(store, &info), GraphQLApi::BadResponse);
}

TEST_F(AccountTest, LogLinesNameTheOperation) {
  GraphQLStorageApi::UserInfo info;
  api.userInfo(store, &info);
  EXPECT_THAT(platform().log.at(0).function,
              AnyOf(StartsWith("graphql::GraphQLApi::ApiError graphql::GraphQLApi::userInfo("),
                    StartsWith("GraphQLApi::ApiError graphql::GraphQLApi::userInfo(")));
  EXPECT_EQ(platform().log.at(0).format, "UserInfo failed err = %d, code = %d");
}
