#include <chrono>
#include <filesystem>

#include "tests/bookstore/BookstoreTest.h"

using bookstore_tests::store;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

namespace {

const char kStoreListPath[] = "/mnt/ext1/system/state/cache/store_list.cfg";
const char kTokenPath[] = "/mnt/ext1/system/config/bookstore.cfg";

class StatusCommandTest : public bookstore_tests::BookstoreTest {};

}  // namespace

TEST_F(StatusCommandTest, ShowsAFreshDevice) {
  EXPECT_EQ(run({"status"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("Root folder         " + root.path() + "\n"));
  EXPECT_THAT(out, HasSubstr("Store list file     " + root.at(kStoreListPath) + " (missing)\n"));
  EXPECT_THAT(out, HasSubstr("Token file          " + root.at(kTokenPath) + " (missing)\n"));
  EXPECT_THAT(out, HasSubstr("Stores              0\n"));
  EXPECT_THAT(out, HasSubstr("Current store       none\n"));
  EXPECT_THAT(out, HasSubstr("Signed in           no\n"));
  EXPECT_THAT(out, HasSubstr("Token lifetime      unknown\n"));
  EXPECT_THAT(out, HasSubstr("Token file changed  never\n"));
  EXPECT_THAT(out, HasSubstr("Store generation    3\n"));
  EXPECT_THAT(out, HasSubstr("Discovery           https://"));
  EXPECT_THAT(out, HasSubstr("Device model        eink 417\n"));
  EXPECT_THAT(out, HasSubstr("Software version    3.2.105\n"));
  EXPECT_THAT(out, HasSubstr("Serial number       SN0001\n"));
  EXPECT_THAT(out,
              HasSubstr("User agent          Orvane Reader/417(screen 1200x1600; FW 3.2.105)\n"));
}

TEST_F(StatusCommandTest, ShowsFilesStoresAndSession) {
  root.put(kStoreListPath, "");
  root.put(kTokenPath, "");
  fileHolds({store("de", "de_de"), store("uk", "en_gb", "The Reading Room")});
  customerAt(store("uk", "en_gb"), "access", "refresh");
  EXPECT_EQ(run({"status"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr(root.at(kStoreListPath) + "\n"));
  EXPECT_THAT(out, HasSubstr(root.at(kTokenPath) + "\n"));
  EXPECT_THAT(out, HasSubstr("Stores              2\n"));
  EXPECT_THAT(out, HasSubstr("Current store       The Reading Room (uk)\n"));
  EXPECT_THAT(out, HasSubstr("Signed in           yes\n"));
  EXPECT_THAT(out, HasSubstr("Token lifetime      3600 (in seconds, as the store reported it)\n"));
}

TEST_F(StatusCommandTest, GivesProgramsTheSame) {
  root.put(kTokenPath, "");
  fileHolds({store("de", "de_de")});
  customerAt(store("de", "de_de"), "access", "refresh");
  EXPECT_EQ(run({"status", "--json"}), bookstore::kDone);
  const Json::Value status = json();
  EXPECT_EQ(status["schema"], 1);
  EXPECT_EQ(status["root"], root.path());
  EXPECT_EQ(status["storeListFile"]["path"], root.at(kStoreListPath));
  EXPECT_EQ(status["storeListFile"]["exists"], false);
  EXPECT_EQ(status["tokenFile"]["path"], root.at(kTokenPath));
  EXPECT_EQ(status["tokenFile"]["exists"], true);
  EXPECT_EQ(status["storeCount"].asUInt(), 1u);
  EXPECT_EQ(status["currentStore"], "de");
  EXPECT_EQ(status["signedIn"], true);
  EXPECT_EQ(status["tokenLifetime"], "3600");
  EXPECT_TRUE(status["secondsSinceTokenFileChanged"].isIntegral());
  EXPECT_EQ(status["storeGeneration"], 3);
  EXPECT_THAT(status["discoveryUrl"].asString(), HasSubstr("/graphql"));
  EXPECT_EQ(status["device"]["model"], "eink 417");
  EXPECT_EQ(status["device"]["softwareVersion"], "3.2.105");
  EXPECT_EQ(status["device"]["serialNumber"], "SN0001");
  EXPECT_THAT(status["device"]["userAgent"].asString(), HasSubstr("Orvane Reader/417"));
}

TEST_F(StatusCommandTest, TellsHowLongTheTokenFileHasNotChanged) {
  root.put(kTokenPath, "");
  const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * 365);
  std::filesystem::last_write_time(root.at(kTokenPath), longAgo);
  run({"status"});
  EXPECT_THAT(out, MatchesRegex("(.|\n)*Token file changed  3153[67][0-9]+ s ago\n(.|\n)*"));
  run({"status", "--json"});
  EXPECT_GE(json()["secondsSinceTokenFileChanged"].asInt(), 24 * 365 * 3600);
  const auto inTheFuture = std::filesystem::file_time_type::clock::now() + std::chrono::hours(1);
  std::filesystem::last_write_time(root.at(kTokenPath), inTheFuture);
  run({"status"});
  EXPECT_THAT(out, HasSubstr("Token file changed  0 s ago\n"));
  root.setDate(kTokenPath, support::kBeyond2038);
  EXPECT_EQ(run({"status"}), 0);
  EXPECT_THAT(out, HasSubstr("Token file changed  0 s ago\n"));
}

TEST_F(StatusCommandTest, GivesProgramsNullForWhatThereIsNot) {
  run({"status", "--json"});
  EXPECT_TRUE(json().isMember("currentStore"));
  EXPECT_TRUE(json()["currentStore"].isNull());
  EXPECT_TRUE(json().isMember("secondsSinceTokenFileChanged"));
  EXPECT_TRUE(json()["secondsSinceTokenFileChanged"].isNull());
}

TEST_F(StatusCommandTest, NamesAFileThatItCannotLookAt) {
  std::filesystem::create_directories(root.at("/mnt/ext1/system"));
  std::filesystem::create_symlink("config", root.at("/mnt/ext1/system/config"));  // to itself
  EXPECT_EQ(run({"status"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("cannot access " + root.at(kTokenPath) + ": "));
}
