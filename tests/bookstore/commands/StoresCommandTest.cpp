#include "tests/bookstore/BookstoreTest.h"

using bookstore_tests::store;
using bookstore_tests::storeAnswer;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

const char kStoreMembers[] =
    R"("storeName":"Buch","url":"https://de.example/","apiUrl":"https://de.example/graphql",)"
    R"("storeCode":"de_de","integrationToken":"sesame","providerID":"de","currency":"EUR")";

class StoresCommandTest : public bookstore_tests::BookstoreTest {
 protected:
  static std::string storeCount() {
    return fake::platform().config.files["/mnt/ext1/system/state/cache/store_list.cfg"]["count"];
  }
};

}  // namespace

TEST_F(StoresCommandTest, ListsTheFileWithoutSendingAnything) {
  fileHolds({store("de", "de_de", "Bücherwelt"), store("uk", "en_gb", "The Reading Room")});
  EXPECT_EQ(run({"stores"}), bookstore::kDone);
  EXPECT_EQ(out,
            "   ID  CODE   NAME              LANGUAGE  CURRENCY  ADDRESS\n"
            "   de  de_de  Bücherwelt        Deutsch   EUR       https://de.example/\n"
            "   uk  en_gb  The Reading Room  Deutsch   EUR       https://uk.example/\n");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(StoresCommandTest, MarksTheCurrentStore) {
  fileHolds({store("de", "de_de"), store("uk", "en_gb")});
  customerAt(store("uk", "en_gb"), "access", "refresh");
  EXPECT_EQ(run({"stores"}), bookstore::kDone);
  EXPECT_THAT(out, AllOf(HasSubstr("\n   de"), HasSubstr("\n*  uk")));
  run({"stores", "--json"});
  EXPECT_FALSE(json()["stores"][0]["current"].asBool());
  EXPECT_TRUE(json()["stores"][1]["current"].asBool());
}

TEST_F(StoresCommandTest, MarksNoStoreWhenNoneIsCurrent) {
  fileHolds({store("de", "de_de")});
  run({"stores"});
  EXPECT_THAT(out, Not(HasSubstr("*")));
  run({"stores", "--json"});
  EXPECT_FALSE(json()["stores"][0]["current"].asBool());
}

TEST_F(StoresCommandTest, GivesProgramsAllMembersUnderTheServersNames) {
  fileHolds({store("de", "de_de", "Bücherwelt")});
  EXPECT_EQ(run({"stores", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  const Json::Value listed = json()["stores"][0];
  EXPECT_EQ(listed["storeName"], "Bücherwelt");
  EXPECT_EQ(listed["url"], "https://de.example/");
  EXPECT_EQ(listed["apiUrl"], "https://de.example/graphql");
  EXPECT_EQ(listed["language"], "Deutsch");
  EXPECT_EQ(listed["langCode"], "de");
  EXPECT_EQ(listed["storeCode"], "de_de");
  EXPECT_EQ(listed["status"], true);
  EXPECT_EQ(listed["integrationToken"], "***");
  EXPECT_EQ(listed["providerID"], "de");
  EXPECT_EQ(listed["currency"], "EUR");
}

TEST_F(StoresCommandTest, ShowsTheIntegrationTokenOnlyWhenAsked) {
  fileHolds({store("de", "de_de")});
  run({"stores", "--json", "--show-secrets"});
  EXPECT_EQ(json()["stores"][0]["integrationToken"], "integration-de");
}

TEST_F(StoresCommandTest, WithoutAStoreInTheFileSaysHowToGetThem) {
  EXPECT_EQ(run({"stores"}), bookstore::kNoSession);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(err, "bookstore: the store list is empty. Run \"bookstore stores --refresh\".\n");
}

TEST_F(StoresCommandTest, RefreshAsksTheServiceAndKeepsWhatItLists) {
  serverAnswers(storeAnswer(kStoreMembers));
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("de_de  Buch"));
  EXPECT_THAT(fake::platform().http.requests, ::testing::SizeIs(1));
  EXPECT_EQ(run({"stores"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("de_de  Buch"));
}

TEST_F(StoresCommandTest, RefreshShowsAlsoAStoreWithoutAnAddress) {
  serverAnswers(storeAnswer(R"("storeName":"Buch","providerID":"de")"));
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("Buch"));
}

TEST_F(StoresCommandTest, RefreshNamesAFailedTransferAndKeepsTheFile) {
  fileHolds({store("de", "de_de")});
  fake::platform().http.failTransfer(60);
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kTransferFailed);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, AllOf(HasSubstr("/graphql failed: the server's certificate is not trusted (60)"),
                         HasSubstr("(60). Set ORVANE_CA_FILE")));
  EXPECT_EQ(storeCount(), "1");
}

TEST_F(StoresCommandTest, RefreshNamesAStatusOtherThan200) {
  serverAnswers("", 503);
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kBadStatus);
  EXPECT_THAT(err, HasSubstr("/graphql returned HTTP status 503. Check "));
}

TEST_F(StoresCommandTest, RefreshWithoutAStoreInTheAnswerSaysThatTheFileIsEmptyNow) {
  fileHolds({store("de", "de_de")});
  serverAnswers(R"({"errors":[{"message":"down"}]})");
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kNoData);
  EXPECT_THAT(err, AllOf(HasSubstr("no list of stores, or a list without an open store; "),
                         HasSubstr("store_list.cfg is empty now. Run the command again with -v")));
  EXPECT_EQ(storeCount(), "0");
}

TEST_F(StoresCommandTest, RefreshNamesAnAnswerThatCannotBeRead) {
  serverAnswers(storeAnswer(R"("storeName":{})"));
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kNoData);
  EXPECT_THAT(err, HasSubstr("the store's response cannot be read ("));
}

TEST_F(StoresCommandTest, RefreshNoticesThatTheFileWasNotWritten) {
  serverAnswers(storeAnswer(kStoreMembers));
  fake::platform().failAt("saveAndClose");
  EXPECT_EQ(run({"stores", "--refresh"}), bookstore::kLocalFailure);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(
      err, HasSubstr(root.path() + "/mnt/ext1/system/state/cache/store_list.cfg was not updated"));
}

TEST_F(StoresCommandTest, MakesHarmlessWhatAServerPutsIntoANameForTheTerminal) {
  fileHolds({store("de", "de_de", "\033[2Jgone\n")});
  run({"stores"});
  EXPECT_THAT(out, HasSubstr("\\x1b[2Jgone\\n"));
}
