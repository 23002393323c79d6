#include "tests/bookstore/BookstoreTest.h"

using bookstore_tests::store;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class HeadersCommandTest : public bookstore_tests::BookstoreTest {
 protected:
  int headers(const std::string& id, const std::string& type,
              const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"headers", "--store", id, "--type", type};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
};

}  // namespace

TEST_F(HeadersCommandTest, ShowsTheHeadersWithoutCredentials) {
  fileHolds({store("de", "de_de")});
  EXPECT_EQ(headers("de", "none"), bookstore::kDone);
  EXPECT_EQ(out,
            "HEADER                     VALUE\n"
            "Content-Type               application/json\n"
            "Cookie                     orvane-currency=EUR; orvane-locale=de; orvane-store=de_de\n"
            "Store                      de_de\n"
            "User-Agent                 Orvane Reader/417(screen 1200x1600; FW 3.2.105)\n"
            "x-header-deviceid          SN0001\n"
            "x-header-reader-model      eink 417\n"
            "x-header-software-version  3.2.105\n");
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(HeadersCommandTest, GivesProgramsNamesAndValues) {
  fileHolds({store("de", "de_de")});
  EXPECT_EQ(headers("de_de", "none", {"--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["store"], "de");
  EXPECT_EQ(json()["type"], "none");
  EXPECT_EQ(json()["headers"]["x-header-deviceid"], "SN0001");
  EXPECT_EQ(json()["headers"].size(), 7u);
}

TEST_F(HeadersCommandTest, MasksTheTokensOfEachType) {
  fileHolds({store("de", "de_de")});
  customerAt(store("de", "de_de"), "access-secret", "refresh-secret");
  EXPECT_EQ(headers("de", "integration"), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("Authorization              Bearer ***\n"));
  EXPECT_EQ(headers("de", "refresh"), bookstore::kDone);
  EXPECT_THAT(
      out, AllOf(HasSubstr("RefreshToken               Bearer ***\n"), Not(HasSubstr("secret"))));
  EXPECT_EQ(headers("de", "refresh", {"--json"}), bookstore::kDone);
  EXPECT_THAT(out, Not(HasSubstr("secret")));
}

TEST_F(HeadersCommandTest, ShowsTheTokensOfEachTypeWhenAsked) {
  fileHolds({store("de", "de_de")});
  customerAt(store("de", "de_de"), "access-secret", "refresh-secret");
  headers("de", "integration", {"--show-secrets"});
  EXPECT_THAT(out, HasSubstr("Bearer integration-de\n"));
  headers("de", "customer", {"--show-secrets"});
  EXPECT_THAT(out, AllOf(HasSubstr("Bearer access-secret\n"), Not(HasSubstr("RefreshToken"))));
  headers("de", "refresh", {"--show-secrets"});
  EXPECT_THAT(out,
              AllOf(HasSubstr("Bearer access-secret\n"), HasSubstr("Bearer refresh-secret\n")));
}

TEST_F(HeadersCommandTest, FindsAStoreByItsCode) {
  fileHolds({store("de", "de_de"), store("uk", "en_gb")});
  EXPECT_EQ(headers("en_gb", "none"), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("en_gb\n"));
}

TEST_F(HeadersCommandTest, PrefersTheIdOfOneStoreToTheCodeOfAnother) {
  fileHolds({store("uk", "de"), store("de", "de_de")});
  EXPECT_EQ(headers("de", "none"), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("de_de\n"));
}

TEST_F(HeadersCommandTest, RefusesACodeThatTwoStoresHave) {
  fileHolds({store("one", "de_de"), store("two", "de_de"), store("uk", "en_gb")});
  EXPECT_EQ(headers("de_de", "none"), bookstore::kUsage);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, HasSubstr("\"de_de\" matches more than one store. Use the ID of one of "
                             "one (de_de), two (de_de).\n"));
}

TEST_F(HeadersCommandTest, ListsTheKnownStoresWhenNoneHasTheId) {
  fileHolds({store("de", "de_de"), store("uk", "en_gb")});
  EXPECT_EQ(headers("fr", "none"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("ID or the code \"fr\". Use one of de (de_de), uk (en_gb).\n"));
}

TEST_F(HeadersCommandTest, WithoutStoresSaysHowToGetThem) {
  EXPECT_EQ(headers("de", "none"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("the store list is empty. Run \"bookstore stores --refresh\""));
}

TEST_F(HeadersCommandTest, NeedsACustomerForTheCustomersCredentials) {
  fileHolds({store("de", "de_de")});
  EXPECT_EQ(headers("de", "customer"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("there is no access token. Run \"bookstore sign-in\", or use"));
  customerAt(store("de", "de_de"), "access", "");
  EXPECT_EQ(headers("de", "customer"), bookstore::kDone);
  EXPECT_EQ(headers("de", "refresh"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("there is no refresh token"));
  customerAt(store("de", "de_de"), "", "refresh");
  EXPECT_EQ(headers("de", "refresh"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("there is no access token"));
}

TEST_F(HeadersCommandTest, NeedsAnIntegrationTokenForTheIntegration) {
  auto without = store("de", "de_de");
  without.integrationToken.clear();
  fileHolds({without});
  EXPECT_EQ(headers("de", "integration"), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("the store de has no integration token. Run "));
}

TEST_F(HeadersCommandTest, RefusesATypeThatThereIsNot) {
  EXPECT_EQ(headers("de", "bearer"), bookstore::kUsage);
  EXPECT_THAT(err, AllOf(HasSubstr("--type"), HasSubstr("none,integration,customer,refresh"),
                         HasSubstr(". Run \"bookstore headers --help\"")));
}

TEST_F(HeadersCommandTest, NeedsStoreAndType) {
  EXPECT_EQ(run({"headers", "--type", "none"}), bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("--store is required"));
  EXPECT_EQ(run({"headers", "--store", "de"}), bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("--type is required"));
}
