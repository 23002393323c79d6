// whoami, refresh and sign-out: what is done with a session.

#include "tests/bookstore/CustomerTest.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

const char kCustomer[] =
    R"({"data":{"customer":{"email":"ada@de.example","firstname":"Ada","lastname":"Byron"}}})";
const char kNewTokens[] =
    R"({"data":{"refreshTokens":{"access_token":"access-new","refresh_token":"refresh-new",)"
    R"("expires_in":60}}})";

class SessionCommandsTest : public bookstore_tests::CustomerTest {
 protected:
  void expectTokens(const std::string& access, const std::string& refresh) {
    EXPECT_EQ(keptText("fakeAccess"), access);
    EXPECT_EQ(keptText("fakeRefresh"), refresh);
  }
};

}  // namespace

TEST_F(SessionCommandsTest, WhoamiAsksTheStore) {
  signedIn();
  serverAnswers(kCustomer);
  EXPECT_EQ(run({"whoami"}), bookstore::kDone);
  EXPECT_EQ(out, "Ada Byron <ada@de.example> at Buch (de)\n");
  EXPECT_EQ(fake::platform().http.requests.at(0).header("Authorization"), "Bearer access-secret");
}

TEST_F(SessionCommandsTest, WhoamiGivesProgramsTheSame) {
  signedIn();
  serverAnswers(kCustomer);
  EXPECT_EQ(run({"whoami", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["email"], "ada@de.example");
  EXPECT_EQ(json()["firstName"], "Ada");
  EXPECT_EQ(json()["lastName"], "Byron");
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(SessionCommandsTest, WhoamiNeedsASession) {
  EXPECT_EQ(run({"whoami"}), bookstore::kNoSession);
  EXPECT_EQ(err,
            "bookstore: not signed in: there is no access token. Run \"bookstore sign-in\".\n");
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SessionCommandsTest, WhoamiSaysThatTheSessionHasEnded) {
  signedIn();
  for (const long status : {401, 403}) {
    serverAnswers("{}", status);
    EXPECT_EQ(run({"whoami"}), bookstore::kNoSession) << status;
    EXPECT_THAT(err,
                HasSubstr(" refused the session: it has expired. Run \"bookstore refresh\" or"));
  }
  serverAnswers(R"({"errors":[{"message":"The current customer isn't authorized."}],)"
                R"("data":{"customer":null}})");
  EXPECT_EQ(run({"whoami"}), bookstore::kNoData);
  EXPECT_THAT(err, HasSubstr(" no customer: the session may have expired. Run \"bookstore"));
  expectTokens("access-secret", "refresh-secret");
}

TEST_F(SessionCommandsTest, WhoamiNamesStatusAndFailedTransfer) {
  signedIn();
  serverAnswers("{}", 500);
  EXPECT_EQ(run({"whoami"}), bookstore::kBadStatus);
  fake::platform().http.failTransfer(7);
  EXPECT_EQ(run({"whoami"}), bookstore::kTransferFailed);
  EXPECT_THAT(err, HasSubstr("the request to " + url + " failed"));
}

TEST_F(SessionCommandsTest, WhoamiMakesHarmlessWhatAServerPutsIntoAName) {
  signedIn();
  serverAnswers(R"({"data":{"customer":{"email":"e","firstname":"\u001b[2J","lastname":"\n"}}})");
  EXPECT_EQ(run({"whoami"}), bookstore::kDone);
  EXPECT_EQ(out, "\\x1b[2J \\n <e> at Buch (de)\n");
}

TEST_F(SessionCommandsTest, RefreshSpendsTheStoredTokenAndKeepsTheNewOnes) {
  signedIn();
  serverAnswers(kNewTokens);
  EXPECT_EQ(run({"refresh"}), bookstore::kDone);
  EXPECT_EQ(out, "Refreshed the tokens\n");
  EXPECT_EQ(sentVariables()["refreshToken"], "refresh-secret");
  expectTokens("access-new", "refresh-new");
}

TEST_F(SessionCommandsTest, RefreshGivesProgramsTheSame) {
  signedIn();
  serverAnswers(kNewTokens);
  EXPECT_EQ(run({"refresh", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["refreshed"], true);
}

TEST_F(SessionCommandsTest, RefreshNeedsARefreshToken) {
  customerAt(german, "access-secret", "");
  EXPECT_EQ(run({"refresh"}), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("there is no refresh token. Run \"bookstore sign-in\""));
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SessionCommandsTest, RefreshSaysThatARefusalEmptiedTheTokens) {
  signedIn();
  serverAnswers(R"({"errors":[{"message":"It has expired."}]})");
  EXPECT_EQ(run({"refresh"}), bookstore::kStoreRefused);
  EXPECT_THAT(err,
              HasSubstr(" refused the refresh (It has expired.); the stored tokens are removed"));
  expectTokens("", "");
  signedIn();
  serverAnswers("{}");
  EXPECT_EQ(run({"refresh"}), bookstore::kStoreRefused);
  EXPECT_THAT(err, HasSubstr(" refused the refresh without a reason; the stored tokens are"));
}

TEST_F(SessionCommandsTest, RefreshSaysThatARefusalWithAStatusKeptTheTokens) {
  signedIn();
  serverAnswers(R"({"code":"401"})", 401);
  EXPECT_EQ(run({"refresh"}), bookstore::kStoreRefused);
  EXPECT_THAT(
      err, HasSubstr(" refused the refresh with HTTP status 401; the stored tokens are unchanged"));
  expectTokens("access-secret", "refresh-secret");
}

TEST_F(SessionCommandsTest, RefreshNamesStatusAndFailedTransferAndKeepsTheTokens) {
  signedIn();
  serverAnswers("{}", 502);
  EXPECT_EQ(run({"refresh"}), bookstore::kBadStatus);
  fake::platform().http.failTransfer(7);
  EXPECT_EQ(run({"refresh"}), bookstore::kTransferFailed);
  expectTokens("access-secret", "refresh-secret");
}

TEST_F(SessionCommandsTest, RefreshNoticesThatTheFileWasNotWritten) {
  signedIn();
  serverAnswers(kNewTokens);
  fake::platform().failAt("save");
  EXPECT_EQ(run({"refresh"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr(" returned new tokens, but the token file " +
                             root.at(bookstore_tests::kTokenFile)));
}

TEST_F(SessionCommandsTest, RefreshNoticesThatOneOfTheTokensWasNotWritten) {
  signedIn();
  for (const char* tokens : {R"("access_token":"access-secret","refresh_token":"refresh-new")",
                             R"("access_token":"access-new","refresh_token":"refresh-secret")"}) {
    serverAnswers(std::string(R"({"data":{"refreshTokens":{)") + tokens + "}}}");
    fake::platform().failAt("save");
    EXPECT_EQ(run({"refresh"}), bookstore::kLocalFailure) << tokens;
  }
}

TEST_F(SessionCommandsTest, RefreshShowsTheRequestOfADryRunAndChangesNothing) {
  signedIn();
  EXPECT_EQ(run({"refresh", "--dry-run", "--curl"}), bookstore::kDone);
  EXPECT_THAT(out, AllOf(HasSubstr("refreshTokens"), Not(HasSubstr("refresh-secret"))));
  expectTokens("access-secret", "refresh-secret");
  EXPECT_FALSE(std::filesystem::exists(root.at("/mnt/ext1/system/config")));
}

TEST_F(SessionCommandsTest, SignOutForgetsTheTokensAndKeepsTheStore) {
  signedIn();
  EXPECT_EQ(run({"sign-out"}), bookstore::kDone);
  EXPECT_EQ(out, "Signed out\n");
  expectTokens("", "");
  EXPECT_EQ(graphql::GraphQLStorageApi().currentStore().providerID, "de");
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SessionCommandsTest, SignOutIsDoneWhenNobodyWasSignedIn) {
  EXPECT_EQ(run({"sign-out"}), bookstore::kDone);
  EXPECT_EQ(out, "Nobody was signed in\n");
}

TEST_F(SessionCommandsTest, SignOutGivesProgramsTheSame) {
  signedIn();
  for (const bool wasSignedIn : {true, false}) {
    EXPECT_EQ(run({"sign-out", "--json"}), bookstore::kDone);
    EXPECT_EQ(json()["schema"], 1);
    EXPECT_EQ(json()["wasSignedIn"], wasSignedIn);
  }
}

TEST_F(SessionCommandsTest, SignOutNoticesThatTheFileWasNotWritten) {
  signedIn();
  fake::platform().failAt("save");
  EXPECT_EQ(run({"sign-out"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("the tokens were removed, but the token file " +
                             root.at(bookstore_tests::kTokenFile)));
}

TEST_F(SessionCommandsTest, SignOutSendsNothingToShow) {
  signedIn();
  EXPECT_EQ(run({"sign-out", "--dry-run", "--curl"}), bookstore::kUsage);
  expectTokens("access-secret", "refresh-secret");
}
