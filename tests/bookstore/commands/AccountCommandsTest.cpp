// register, email-available and reset-password: what a store does for who is not signed in.

#include "tests/bookstore/CustomerTest.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class AccountCommandsTest : public bookstore_tests::CustomerTest {
 protected:
  int registerAda(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"register",     "--email",          "ada@de.example",
                                      "--first-name", "Ada \"Countess\"", "--last-name",
                                      "Byron"};
    words.insert(words.end(), more.begin(), more.end());
    return runWithPassword(words);
  }

  int emailAvailable(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"email-available", "--email", "ada@de.example"};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }

  int resetPassword(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"reset-password", "--email", "ada@de.example"};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
};

}  // namespace

TEST_F(AccountCommandsTest, RegisterSendsWhatWasGiven) {
  serverAnswers(R"({"data":{"createCustomerV2":{"customer":{}}}})");
  EXPECT_EQ(registerAda(), bookstore::kDone);
  EXPECT_EQ(out, "Registered ada@de.example at Buch (de)\n");
  const Json::Value input = sentVariables()["input"];
  EXPECT_EQ(input["email"], "ada@de.example");
  EXPECT_EQ(input["password"], bookstore_tests::kPassword);
  EXPECT_EQ(input["firstname"], "Ada \"Countess\"");
  EXPECT_EQ(input["lastname"], "Byron");
  EXPECT_EQ(input["is_subscribed"], false);
  EXPECT_EQ(keptText("fakeAccess"), "");
}

TEST_F(AccountCommandsTest, RegisterSubscribesOnlyWhenAsked) {
  serverAnswers("{}");
  EXPECT_EQ(registerAda({"--subscribe", "--json"}), bookstore::kDone);
  EXPECT_EQ(sentVariables()["input"]["is_subscribed"], true);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["email"], "ada@de.example");
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(AccountCommandsTest, RegisterShowsARefusalInTheServersWords) {
  serverAnswers(R"({"errors":[{"message":"A customer with the same address exists."}]})");
  EXPECT_EQ(registerAda(), bookstore::kStoreRefused);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, HasSubstr(url + " refused the request (A customer with the same address"));
}

TEST_F(AccountCommandsTest, RegisterNamesStatusAndFailedTransfer) {
  serverAnswers("{}", 500);
  EXPECT_EQ(registerAda(), bookstore::kBadStatus);
  EXPECT_THAT(err, HasSubstr("HTTP status 500"));
  fake::platform().http.failTransfer(28);
  EXPECT_EQ(registerAda(), bookstore::kTransferFailed);
  EXPECT_THAT(err, HasSubstr("the server took too long (28)"));
}

TEST_F(AccountCommandsTest, RegisterRefusesNamesThatARequestCannotCarry) {
  expectNothingDone({"register", "--email", "a", "--first-name", "\xff", "--last-name", "b"},
                    bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("the value of --first-name is not valid UTF-8 at byte 1"));
  expectNothingDone({"register", "--email", "a", "--first-name", "b", "--last-name", "\xff"},
                    bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("the value of --last-name is not valid UTF-8 at byte 1"));
}

TEST_F(AccountCommandsTest, NoPasswordIsTakenFromTheArguments) {
  for (const char* command : {"register", "sign-in"}) {
    EXPECT_EQ(run({command, "--password", "secret"}), bookstore::kUsage);
    EXPECT_THAT(fake::platform().http.requests, IsEmpty());
  }
}

TEST_F(AccountCommandsTest, RegisterShowsTheRequestOfADryRunWithThePasswordMasked) {
  expectNothingDone(
      {"register", "--email", "a", "--first-name", "b", "--last-name", "c", "--dry-run", "--curl"},
      bookstore::kDone);
  EXPECT_THAT(out, AllOf(HasSubstr("createCustomer"), Not(HasSubstr("word\\"))));
}

TEST_F(AccountCommandsTest, EmailAvailableTellsBothAnswers) {
  serverAnswers(R"({"data":{"isEmailAvailable":{"is_email_available":true}}})");
  EXPECT_EQ(emailAvailable(), bookstore::kDone);
  EXPECT_EQ(out, "ada@de.example is available at Buch (de)\n");
  serverAnswers(R"({"data":{"isEmailAvailable":{"is_email_available":false}}})");
  EXPECT_EQ(emailAvailable(), bookstore::kDone);
  EXPECT_EQ(out, "ada@de.example is already registered at Buch (de)\n");
}

TEST_F(AccountCommandsTest, EmailAvailableGivesProgramsTheSame) {
  for (const bool isAvailable : {true, false}) {
    serverAnswers(std::string(R"({"data":{"isEmailAvailable":{"is_email_available":)") +
                  (isAvailable ? "true}}}" : "false}}}"));
    EXPECT_EQ(emailAvailable({"--json"}), bookstore::kDone);
    EXPECT_EQ(json()["schema"], 1);
    EXPECT_EQ(json()["available"], isAvailable);
    EXPECT_EQ(json()["email"], "ada@de.example");
    EXPECT_EQ(json()["store"], "de");
  }
}

TEST_F(AccountCommandsTest, EmailAvailableNamesAnAnswerWithoutAWordAboutIt) {
  serverAnswers("{}");
  EXPECT_EQ(emailAvailable(), bookstore::kNoData);
  EXPECT_THAT(
      err, HasSubstr("an HTTP status other than 200, or a response without the expected data. "));
  serverAnswers("{}", 500);  // of which the library does not tell
  EXPECT_EQ(emailAvailable(), bookstore::kNoData);
}

TEST_F(AccountCommandsTest, EmailAvailableNamesFailedTransferAndUnreadableAnswer) {
  fake::platform().http.failTransfer(6);
  EXPECT_EQ(emailAvailable(), bookstore::kTransferFailed);
  serverAnswers(R"({"data":{"isEmailAvailable":{"is_email_available":"maybe"}}})");
  EXPECT_EQ(emailAvailable(), bookstore::kNoData);
  EXPECT_THAT(err, HasSubstr("cannot be read"));
}

TEST_F(AccountCommandsTest, ResetPasswordSaysWhatWasAskedFor) {
  serverAnswers(R"({"data":{"requestPasswordResetEmail":true}})");
  EXPECT_EQ(resetPassword(), bookstore::kDone);
  EXPECT_EQ(out, "Buch (de) was asked to email a link to ada@de.example\n");
  serverAnswers(R"({"data":{"requestPasswordResetEmail":true}})");
  EXPECT_EQ(resetPassword({"--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["email"], "ada@de.example");
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(AccountCommandsTest, ResetPasswordShowsARefusalInTheServersWords) {
  serverAnswers(R"({"errors":[{"message":"Cannot reset it."}]})");
  EXPECT_EQ(resetPassword(), bookstore::kStoreRefused);
  EXPECT_THAT(err, HasSubstr("refused the request (Cannot reset it.). Correct"));
}

TEST_F(AccountCommandsTest, ResetPasswordNamesStatusAndFailedTransfer) {
  serverAnswers("{}", 403);
  EXPECT_EQ(resetPassword(), bookstore::kBadStatus);
  EXPECT_THAT(err, HasSubstr("HTTP status 403"));
  fake::platform().http.failTransfer(52);  // the library reports this one in its record alone
  EXPECT_EQ(resetPassword(), bookstore::kTransferFailed);
  EXPECT_THAT(err, HasSubstr("without a response (52)"));
}

TEST_F(AccountCommandsTest, TheOthersRefuseAddressesThatARequestCannotCarry) {
  for (const char* command : {"email-available", "reset-password"}) {
    EXPECT_EQ(run({command, "--email", "\xff"}), bookstore::kUsage);
    EXPECT_THAT(err, HasSubstr("the value of --email is not valid UTF-8"));
  }
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(AccountCommandsTest, TheOthersShowTheRequestOfADryRun) {
  EXPECT_EQ(emailAvailable({"--dry-run", "--curl"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("isEmailAvailable"));
  EXPECT_EQ(resetPassword({"--dry-run", "--curl"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("requestPasswordResetEmail"));
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}
