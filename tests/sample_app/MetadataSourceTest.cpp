#include "sample_app/MetadataSource.h"

#include "tests/sample_app/SampleAppTest.h"

using sample_app::MetadataSource;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Outcome = sample_app::MetadataSource::Outcome;

namespace {

class MetadataSourceTest : public SampleAppTest {
 protected:
  MetadataSource::Lookup find(const std::string& bookId = "b1") {
    return MetadataSource(storage).find(bookId);
  }

  void refuse(long status = 401) { platform().http.answer(status, R"({"errors":[]})"); }

  void answerTokens() {
    platform().http.answer(200, R"({"data":{"refreshTokens":{"access_token":"fresh",)"
                                R"("refresh_token":"next","expires_in":"3600"}}})");
  }

  std::string tokenOf(std::size_t request) {
    return platform().http.requests.at(request).header("Authorization");
  }
};

}  // namespace

TEST_F(MetadataSourceTest, AsksTheCurrentStoreInTheCustomersName) {
  answerBook("b1", "https://a.example/1.png");
  const auto lookup = find();
  EXPECT_EQ(lookup.outcome, Outcome::Found);
  EXPECT_EQ(lookup.metadata.name, "Title of b1");
  EXPECT_EQ(lookup.metadata.thumbnailUrl, "https://a.example/1.png");
  EXPECT_EQ(platform().http.requests.at(0).url, store.apiUrl);
  EXPECT_EQ(tokenOf(0), "Bearer access");
}

TEST_F(MetadataSourceTest, SeesWhoSignedInMeanwhile) {
  MetadataSource source(storage);
  platform().config.setSecret(kTokenPath, "fakeAccess", "");
  EXPECT_EQ(source.find("b1").outcome, Outcome::SignedOut);
  EXPECT_THAT(platform().http.requests, IsEmpty());
  platform().config.setSecret(kTokenPath, "fakeAccess", "other");
  answerBook("b1");
  EXPECT_EQ(source.find("b1").outcome, Outcome::Found);
  EXPECT_EQ(tokenOf(0), "Bearer other");
}

TEST_F(MetadataSourceTest, WithoutTheStoreOfTheSessionNobodyIsSignedIn) {
  storage->setStoresList({makeStore("other")});
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
}

TEST_F(MetadataSourceTest, AFailedTransferIsUnreachable) {
  EXPECT_EQ(find().outcome, Outcome::Unreachable);
  EXPECT_THAT(asked(), ElementsAre("productDetails"));
}

TEST_F(MetadataSourceTest, AnotherStatusIsAServerInTrouble) {
  for (const long status : {500L, 503L, 429L, 404L, 302L}) {
    platform().http.answer(status, "<html>");
    const auto lookup = find();
    EXPECT_EQ(lookup.outcome, Outcome::ServerError) << status;
    EXPECT_THAT(lookup.reason, HasSubstr(std::to_string(status)));
  }
}

TEST_F(MetadataSourceTest, AnotherBookInTheAnswerIsUnknown) {
  answerBook("b2\n");
  answerBook("b2");
  EXPECT_EQ(find().outcome, Outcome::Unknown);
  EXPECT_THAT(asked(), ElementsAre("productDetails"));
}

TEST_F(MetadataSourceTest, NoBookInAWorkingSessionIsUnknown) {
  answerNoBook();
  answerCustomer();
  const auto lookup = find();
  EXPECT_EQ(lookup.outcome, Outcome::Unknown);
  EXPECT_THAT(lookup.reason, HasSubstr("does not know"));
  EXPECT_THAT(asked(), ElementsAre("productDetails", "customer"));
}

TEST_F(MetadataSourceTest, NoBookWithoutAnAnswerAboutTheSessionWaits) {
  answerNoBook();
  EXPECT_EQ(find().outcome, Outcome::Unreachable);
  answerNoBook();
  platform().http.answer(503, "");
  EXPECT_EQ(find().outcome, Outcome::ServerError);
}

TEST_F(MetadataSourceTest, AnEarlierFailureDoesNotCountForTheNextBook) {
  MetadataSource source(storage);
  platform().http.answer(503, "");
  EXPECT_EQ(source.find("b1").outcome, Outcome::ServerError);
  answerNoBook();
  answerCustomer();
  EXPECT_EQ(source.find("b1").outcome, Outcome::Unknown);
}

TEST_F(MetadataSourceTest, AnAnswerThatCannotBeReadIsUnknown) {
  platform().http.answer(200, R"({"data":{"productDetails":{"product":{"uid":{}}}}})");
  EXPECT_EQ(find().outcome, Outcome::Unknown);
}

TEST_F(MetadataSourceTest, AnIdentifierThatCouldChangeTheQueryIsNeverSent) {
  for (const std::string bookId : {"", "a\"b", "a\\", "a\nb", "a b", "\x7f", "\xc3\xa9",
                                   "x\") { product { uid } } customer { email } #"}) {
    EXPECT_EQ(find(bookId).outcome, Outcome::Unknown) << bookId;
  }
  EXPECT_EQ(find(std::string(256, 'a')).outcome, Outcome::Unknown);
  EXPECT_THAT(platform().http.requests, IsEmpty());
  answerBook(std::string(255, '~'));
  EXPECT_EQ(find(std::string(255, '~')).outcome, Outcome::Found);
}

// --- Refused tokens ------------------------------------------------------------------------------

TEST_F(MetadataSourceTest, ARefusedTokenIsRefreshedAndTheNewOneKept) {
  for (const long status : {401L, 403L}) {
    tokenFileHolds(store);
    platform().http.requests.clear();
    refuse(status);
    answerTokens();
    answerBook("b1");
    EXPECT_EQ(find().outcome, Outcome::Found);
    EXPECT_THAT(asked(), ElementsAre("productDetails", "refreshTokens", "productDetails"));
    EXPECT_EQ(tokenOf(2), "Bearer fresh");
    EXPECT_THAT(platform().http.requests.at(1).body, HasSubstr("\"refreshToken\":\"refresh\""));
    EXPECT_EQ(tokenFile()["fakeAccess"], "fresh");
    EXPECT_EQ(tokenFile()["fakeRefresh"], "next");
  }
}

TEST_F(MetadataSourceTest, ATokenThatAnOlderServerIgnoresIsRefreshed) {
  answerNoBook();
  platform().http.answer(200, R"({"data":{"customer":null}})");
  answerTokens();
  answerBook("b1");
  EXPECT_EQ(find().outcome, Outcome::Found);
  EXPECT_THAT(asked(),
              ElementsAre("productDetails", "customer", "refreshTokens", "productDetails"));
}

TEST_F(MetadataSourceTest, ASecondRefusalIsTheEndOfTheSession) {
  refuse();
  answerTokens();
  refuse();
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
  EXPECT_THAT(asked(), ElementsAre("productDetails", "refreshTokens", "productDetails"));
}

TEST_F(MetadataSourceTest, ARefusedRefreshIsTheEndOfTheSession) {
  refuse();
  refuse();
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
  refuse();
  platform().http.answer(200, R"({"errors":[{"message":"expired"}]})");
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
}

TEST_F(MetadataSourceTest, ARefreshThatDoesNotGetThroughKeepsTheTokens) {
  refuse();
  EXPECT_EQ(find().outcome, Outcome::Unreachable);
  refuse();
  platform().http.answer(503, R"({"code":401})");
  EXPECT_EQ(find().outcome, Outcome::ServerError);
  EXPECT_EQ(tokenFile()["fakeRefresh"], "refresh");
}

TEST_F(MetadataSourceTest, WithoutTheLockOfTheSessionNothingIsRefreshed) {
  std::filesystem::create_directories(
      root.at("/mnt/ext1/system/config/.bookstore.cfg.session.lock/in the way"));
  refuse();
  const auto lookup = find();
  EXPECT_EQ(lookup.outcome, Outcome::LockFailed);
  EXPECT_THAT(lookup.reason, HasSubstr("the session cannot be locked: "));
  EXPECT_THAT(asked(), ElementsAre("productDetails"));
}

TEST_F(MetadataSourceTest, WithoutARefreshTokenTheSessionHasEnded) {
  platform().config.setSecret(kTokenPath, "fakeRefresh", "");
  refuse();
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
  EXPECT_THAT(asked(), ElementsAre("productDetails"));
}

TEST_F(MetadataSourceTest, TheTokenThatAnotherProgramRefreshedIsUsed) {
  refuse();
  answerBook("b1");
  platform().http.beforeSending = [](const std::string&) {
    platform().config.setSecret(kTokenPath, "fakeAccess", "theirs");
  };
  EXPECT_EQ(find().outcome, Outcome::Found);
  EXPECT_THAT(asked(), ElementsAre("productDetails", "productDetails"));
  EXPECT_EQ(tokenOf(1), "Bearer theirs");
}

TEST_F(MetadataSourceTest, WhoSignedOutMeanwhileStaysSignedOut) {
  refuse();
  platform().http.beforeSending = [](const std::string&) {
    platform().config.setSecret(kTokenPath, "fakeAccess", "");
  };
  EXPECT_EQ(find().outcome, Outcome::SignedOut);
  EXPECT_THAT(asked(), ElementsAre("productDetails"));
}
