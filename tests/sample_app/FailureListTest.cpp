#include "sample_app/FailureList.h"

#include "tests/sample_app/SampleAppTest.h"

using sample_app::kFailureListPath;
using sample_app::listFailure;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

class FailureListTest : public SampleAppTest {};

TEST_F(FailureListTest, TellsTheItemTheReasonAndTheTime) {
  EXPECT_TRUE(listFailure({"b", "/s"}, "no such book"));
  ASSERT_THAT(failures(), SizeIs(1));
  EXPECT_EQ(failures()[0]["bookId"].asString(), "b");
  EXPECT_EQ(failures()[0]["sampleFilePath"].asString(), "/s");
  EXPECT_EQ(failures()[0]["reason"].asString(), "no such book");
  EXPECT_THAT(failures()[0]["time"].asString(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"));
}

TEST_F(FailureListTest, AppendsAndIsForItsOwnerOnly) {
  listFailure({"b1", "/s"}, "r");
  listFailure({"b2", "/s"}, "r");
  ASSERT_THAT(failures(), SizeIs(2));
  EXPECT_EQ(failures()[1]["bookId"].asString(), "b2");
  EXPECT_EQ(root.modeOf(kFailureListPath), 0600U);
}

TEST_F(FailureListTest, StaysOneLinePerItemWhateverTheItemHolds) {
  listFailure({"line\nfeed \xff \"quote\"", std::string("nul\0", 4)}, "r");
  EXPECT_THAT(failures(), SizeIs(1));
  EXPECT_EQ(failures()[0]["sampleFilePath"].asString(), std::string("nul\0", 4));
}

TEST_F(FailureListTest, AListThatHasGrownLargeMakesRoom) {
  root.put(kFailureListPath, std::string(1024 * 1024 + 1, 'x'));
  listFailure({"b", "/s"}, "r");
  EXPECT_THAT(failures(), SizeIs(1));
  EXPECT_EQ(root.contentOf(std::string(kFailureListPath) + ".old").size(), 1024U * 1024 + 1);
}

TEST_F(FailureListTest, AListOfAnySizeAndDateMakesRoom) {
  root.put(kFailureListPath, "");
  ASSERT_EQ(::truncate(root.at(kFailureListPath).c_str(), (off_t(1) << 32) + 1), 0);
  root.setDate(kFailureListPath, support::kBeyond2038);
  EXPECT_TRUE(listFailure({"b", "/s"}, "r"));
  EXPECT_THAT(failures(), SizeIs(1));
}

TEST_F(FailureListTest, SaysWhenItCannotBeWritten) {
  std::filesystem::create_directories(root.at(kFailureListPath));
  EXPECT_FALSE(listFailure({"b", "/s"}, "r"));
  EXPECT_THAT(platform().logTexts(kFailureLevel), SizeIs(1));
}

TEST_F(FailureListTest, FollowsNoLink) {
  listFailure({"b", "/s"}, "r");
  const std::string victim = root.at("/victim");
  std::filesystem::remove(root.at(kFailureListPath));
  std::filesystem::create_symlink(victim, root.at(kFailureListPath));
  EXPECT_FALSE(listFailure({"b", "/s"}, "r"));
  EXPECT_FALSE(std::filesystem::exists(victim));
}
