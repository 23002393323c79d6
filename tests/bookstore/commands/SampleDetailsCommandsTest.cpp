// sample info and price.

#include "tests/bookstore/SampleTest.h"

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class SampleDetailsCommandsTest : public bookstore_tests::SampleTest {
 protected:
  SampleDetailsCommandsTest() { signedIn(); }

  const std::vector<std::string> both = {"info", "price"};
};

}  // namespace

TEST_F(SampleDetailsCommandsTest, InfoShowsWhatTheStoreKnows) {
  serverKnows("b1");
  EXPECT_EQ(run({"sample", "info", "b1"}), bookstore::kDone);
  EXPECT_EQ(out,
            "Book     b1\n"
            "Title    Title of b1\n"
            "Author   Ada\n"
            "Price    EUR 9.99\n"
            "Picture  http://picture.example/1\n"
            "Store    Buch (de)\n");
  EXPECT_EQ(fake::platform().http.requests.at(0).header("Authorization"), "Bearer access-secret");
}

TEST_F(SampleDetailsCommandsTest, InfoGivesProgramsTheSame) {
  serverKnows("b1", "12");
  EXPECT_EQ(run({"sample", "info", "b1", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["uid"], "b1");
  EXPECT_EQ(json()["name"], "Title of b1");
  EXPECT_EQ(json()["author"], "Ada");
  EXPECT_EQ(json()["price"], "EUR 9.99");
  EXPECT_EQ(json()["oldPrice"], "EUR 12.00");
  EXPECT_EQ(json()["thumbnailUrl"], "http://picture.example/1");
  EXPECT_EQ(json()["apiUrl"], url);
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(SampleDetailsCommandsTest, PriceAsksForThePriceAlone) {
  serverKnows("b1", "12");
  EXPECT_EQ(run({"sample", "price", "b1"}), bookstore::kDone);
  EXPECT_EQ(out,
            "Book           b1\n"
            "Price          EUR 9.99\n"
            "Regular price  EUR 12.00\n");
  EXPECT_THAT(fake::platform().http.requests.at(0).body, Not(HasSubstr("authors")));
  serverKnows("b1");
  EXPECT_EQ(run({"sample", "price", "b1", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["uid"], "b1");
  EXPECT_EQ(json()["price"], "EUR 9.99");
  EXPECT_EQ(json()["oldPrice"], "");
  EXPECT_EQ(json()["store"], "de");
}

TEST_F(SampleDetailsCommandsTest, TheyAskTheStoreThatIsNamed) {
  const auto british = bookstore_tests::store("uk", "en_gb", "Room");
  fileHolds({german, british});
  for (const std::string& command : both) {
    serverKnows("b1");
    EXPECT_EQ(run({"sample", command, "b1", "--store", "uk"}), bookstore::kDone) << err;
    EXPECT_EQ(fake::platform().http.requests.back().url, british.apiUrl);
  }
}

TEST_F(SampleDetailsCommandsTest, TheyNeedASession) {
  customerAt(german, "", "");
  for (const std::string& command : both) {
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kNoSession);
    EXPECT_THAT(err, HasSubstr("not signed in"));
  }
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SampleDetailsCommandsTest, TheySayThatTheSessionHasEnded) {
  for (const std::string& command : both) {
    serverAnswers("{}", 401);
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kNoSession);
    EXPECT_THAT(err,
                HasSubstr(" refused the session: it has expired. Run \"bookstore refresh\" or"));
  }
}

TEST_F(SampleDetailsCommandsTest, TheyNameStatusAndFailedTransfer) {
  for (const std::string& command : both) {
    serverAnswers("{}", 500);
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kBadStatus);
    fake::platform().http.failTransfer(7);
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kTransferFailed);
    EXPECT_THAT(err, HasSubstr("the request to " + url + " failed"));
  }
}

TEST_F(SampleDetailsCommandsTest, TheyTellAnAnswerWithoutTheBookFromOneWithAnother) {
  for (const std::string& command : both) {
    serverAnswers(R"({"data":{"productDetails":{"product":null}}})");
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kNoData);
    EXPECT_THAT(err, HasSubstr(url + " returned no book: the store does not know it, or"));
    serverKnows("b2");
    EXPECT_EQ(run({"sample", command, "b1"}), bookstore::kNoData);
    EXPECT_THAT(err, HasSubstr(url + " returned another book, b2"));
    EXPECT_THAT(out, IsEmpty());
  }
}

TEST_F(SampleDetailsCommandsTest, TheyRefuseABookThatCouldChangeTheQuery) {
  for (const std::string& command : both) {
    EXPECT_EQ(run({"sample", command, "b\") { x } y(z: \""}), bookstore::kUsage);
    EXPECT_THAT(err, HasSubstr(" cannot be the uid of a book. Use 1 to 255 ASCII"));
  }
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SampleDetailsCommandsTest, TheyShowTheRequestOfADryRun) {
  for (const std::string& command : both) {
    EXPECT_EQ(run({"sample", command, "b1", "--dry-run", "--curl"}), bookstore::kDone);
    EXPECT_THAT(out, HasSubstr("productDetails(uid: \\\"b1\\\")"));
  }
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}
