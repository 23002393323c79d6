#include "tests/bookstore/CustomerTest.h"

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

const char kTokens[] =
    R"({"data":{"generateCustomerToken":{"token":"access-new","refresh_token":"refresh-new",)"
    R"("expires_in":3600}}})";

class SignInCommandTest : public bookstore_tests::CustomerTest {
 protected:
  int signIn(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"sign-in", "--email", "ada@de.example"};
    words.insert(words.end(), more.begin(), more.end());
    return runWithPassword(words);
  }
};

}  // namespace

TEST_F(SignInCommandTest, SendsAddressAndPasswordAndSaysWhoIsSignedInWhere) {
  serverAnswers(kTokens);
  EXPECT_EQ(signIn(), bookstore::kDone);
  EXPECT_EQ(out, "Signed in as ada@de.example at Buch (de)\n");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_EQ(sentVariables()["email"], "ada@de.example");
  EXPECT_EQ(sentVariables()["password"], bookstore_tests::kPassword);
  EXPECT_EQ(keptText("fakeAccess"), "access-new");
  EXPECT_EQ(keptText("fakeRefresh"), "refresh-new");
}

TEST_F(SignInCommandTest, GivesProgramsTheSame) {
  serverAnswers(kTokens);
  EXPECT_EQ(signIn({"--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["email"], "ada@de.example");
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(SignInCommandTest, ShowsARefusalInTheServersWords) {
  signedIn();
  serverAnswers(R"({"errors":[{"message":"The account is locked."}],"data":null})");
  EXPECT_EQ(signIn(), bookstore::kStoreRefused);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, HasSubstr("bookstore: " + url +
                             " refused the sign-in (The account is locked.); nobody is signed in "
                             "now. Check the email address and the password"));
  EXPECT_EQ(keptText("fakeAccess"), "");
}

TEST_F(SignInCommandTest, TakesAnAnswerWithoutATokenForARefusal) {
  for (const char* answer :
       {"{}", "no JSON", R"({"data":{"generateCustomerToken":null}})",
        R"({"data":{"generateCustomerToken":{"token":"","refresh_token":"r"}}})"}) {
    serverAnswers(answer);
    EXPECT_EQ(signIn(), bookstore::kStoreRefused) << answer;
    EXPECT_THAT(out, IsEmpty());
    EXPECT_THAT(err, HasSubstr(" refused the sign-in without a reason; nobody"));
  }
}

TEST_F(SignInCommandTest, TakesStatus401ForARefusal) {
  serverAnswers(R"({"errors":[{"message":"not passed on"}]})", 401);
  EXPECT_EQ(signIn(), bookstore::kStoreRefused);
  EXPECT_THAT(err, HasSubstr(" refused the sign-in with HTTP status 401; nobody"));
  serverAnswers(R"({"code":17})", 401);
  EXPECT_EQ(signIn(), bookstore::kStoreRefused);
  EXPECT_THAT(err, HasSubstr(" refused the sign-in with HTTP status 401 and code 17; nobody"));
}

TEST_F(SignInCommandTest, NamesAnotherStatusAndSaysThatTheSessionIsGone) {
  signedIn();
  serverAnswers(R"({"code":1})", 503);
  EXPECT_EQ(signIn(), bookstore::kBadStatus);
  EXPECT_THAT(err, HasSubstr(" HTTP status 503; nobody is signed in now. "));
}

TEST_F(SignInCommandTest, NamesAFailedTransferAndSaysThatTheSessionIsGone) {
  signedIn();
  fake::platform().http.failTransfer(7);
  EXPECT_EQ(signIn(), bookstore::kTransferFailed);
  EXPECT_THAT(err, HasSubstr("no connection to the server (7); nobody is signed in now. "));
}

TEST_F(SignInCommandTest, KeepsQuietAboutASessionThatIsStillInTheFile) {
  signedIn();
  fake::platform().http.failTransfer(7);
  fake::platform().failAt("save");
  EXPECT_EQ(signIn(), bookstore::kTransferFailed);
  EXPECT_THAT(err, Not(HasSubstr("nobody is signed in")));
}

TEST_F(SignInCommandTest, NamesACodeThatCannotBeRead) {
  serverAnswers(R"({"code":"seventeen"})", 401);
  EXPECT_EQ(signIn(), bookstore::kNoData);
  EXPECT_THAT(err, HasSubstr("the store's response cannot be read (Value"));
}

TEST_F(SignInCommandTest, NoticesThatTheFileWasNotWritten) {
  serverAnswers(kTokens);
  fake::platform().failAt("save");
  EXPECT_EQ(signIn(), bookstore::kLocalFailure);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, HasSubstr(" signed ada@de.example in, but the token file " +
                             root.at(bookstore_tests::kTokenFile) + " was not updated. See "));
}

TEST_F(SignInCommandTest, NamesALockThatCannotBeHad) {
  root.put("/mnt/ext1/system/config", "a file in place of the folder");
  EXPECT_EQ(signIn(), bookstore::kLocalFailure);
  EXPECT_THAT(err,
              HasSubstr("cannot lock the session beside " + root.at(bookstore_tests::kTokenFile)));
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SignInCommandTest, ShowsTheRequestOfADryRunWithThePasswordMaskedAndChangesNothing) {
  signedIn();
  expectNothingDone({"sign-in", "--email", "ada@de.example", "--dry-run", "--curl"},
                    bookstore::kDone);
  EXPECT_THAT(out, AllOf(HasSubstr("generateCustomerToken"), HasSubstr("ada@de.example"),
                         Not(HasSubstr("word\\"))));
  EXPECT_FALSE(std::filesystem::exists(root.at("/mnt/ext1/system/config")));
}

TEST_F(SignInCommandTest, ShowsThePasswordOfADryRunWhenAsked) {
  EXPECT_EQ(signIn({"--dry-run", "--curl", "--show-secrets"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("word\\"));
}

// --- The store ----------------------------------------------------------------------------------

TEST_F(SignInCommandTest, GoesToTheStoreThatIsNamed) {
  fileHolds({german, bookstore_tests::store("uk", "en_gb")});
  serverAnswers(kTokens);
  EXPECT_EQ(signIn({"--store", "en_gb"}), bookstore::kDone);
  EXPECT_THAT(out, EndsWith("(uk)\n"));
}

TEST_F(SignInCommandTest, GoesToTheCurrentStoreUnlessOneIsNamed) {
  const auto british = bookstore_tests::store("uk", "en_gb");
  fileHolds({german, british});
  customerAt(british, "", "");
  serverAnswers(kTokens);
  EXPECT_EQ(signIn(), bookstore::kDone);
  EXPECT_THAT(out, EndsWith("(uk)\n"));
}

TEST_F(SignInCommandTest, ListsTheStoresWhenNoneIsCurrent) {
  fileHolds({german, bookstore_tests::store("uk", "en_gb")});
  expectNothingDone({"sign-in", "--email", "ada@de.example"}, bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("none of them is the current store. Add --store with one of "
                             "de (de_de), uk (en_gb).\n"));
}

TEST_F(SignInCommandTest, NeedsAStore) {
  fileHolds({});
  expectNothingDone({"sign-in", "--email", "ada@de.example"}, bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("the store list is empty. Run \"bookstore stores --refresh\""));
}

// --- Texts that a request cannot carry ----------------------------------------------------------

TEST_F(SignInCommandTest, RefusesAnAddressThatIsNotUtf8BeforeAnythingIsSent) {
  for (const char* text : {"a\xff", "a\xc3", "a\xed\xa0\x80", "a\xc2", "a\x80", "a\xe2\x82"}) {
    expectNothingDone({"sign-in", "--email", text}, bookstore::kUsage);
    EXPECT_THAT(err, HasSubstr("the value of --email is not valid UTF-8 at byte 2. Use "));
  }
}

TEST_F(SignInCommandTest, TakesControlCharactersAndAllOfUnicode) {
  for (const char* text : {"\t\n\x01\x7f", "\xc2\x85", "\xc3\xa9\xe2\x82\xac\xf0\x9f\x93\x9a"}) {
    fake::platform().http.requests.clear();
    serverAnswers(kTokens);
    EXPECT_EQ(runWithPassword({"sign-in", "--email", text}, text + std::string("x")),
              bookstore::kDone)
        << err;
    EXPECT_EQ(sentVariables()["email"], text);
    EXPECT_EQ(sentVariables()["password"], text + std::string("x"));
  }
}

TEST_F(SignInCommandTest, RefusesANulBeforeAnythingIsSent) {
  expectNothingDone({"sign-in", "--email", std::string("a\0b", 3)}, bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("the value of --email contains a NUL at byte 2"));
  EXPECT_EQ(runWithPassword({"sign-in", "--email", "a"}, std::string("word\0", 5)),
            bookstore::kUsage);
  EXPECT_THAT(err,
              AllOf(HasSubstr("the password contains a NUL at byte 5"), Not(HasSubstr("word\\"))));
  EXPECT_THAT(fake::platform().http.requests, SizeIs(0));
}
