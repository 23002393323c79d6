// sample list, next and remove.

#include "tests/bookstore/SampleTest.h"

using support::queued;
using support::queueHolds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using SampleQueueCommandsTest = bookstore_tests::SampleTest;

TEST_F(SampleQueueCommandsTest, ListShowsTheOldestFirst) {
  queueHolds({{"b2", "/s/1"}, {"long", "/s/2"}});
  EXPECT_EQ(run({"sample", "list"}), bookstore::kDone);
  EXPECT_EQ(out,
            "BOOK  FILE\n"
            "b2    /s/1\n"
            "long  /s/2\n");
  EXPECT_THAT(queued(), SizeIs(2));
}

TEST_F(SampleQueueCommandsTest, ListGivesProgramsTheSame) {
  queueHolds({{"b2", "/s/1"}, {"b1", "/s/2"}});
  EXPECT_EQ(run({"sample", "list", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  ASSERT_EQ(json()["samples"].size(), 2U);
  EXPECT_EQ(json()["samples"][0]["bookId"], "b2");
  EXPECT_EQ(json()["samples"][1]["sampleFilePath"], "/s/2");
}

TEST_F(SampleQueueCommandsTest, ListSaysThatTheQueueIsEmpty) {
  EXPECT_EQ(run({"sample", "list"}), bookstore::kDone);
  EXPECT_EQ(out, "The queue is empty\n");
  EXPECT_EQ(run({"sample", "list", "--json"}), bookstore::kDone);
  EXPECT_TRUE(json()["samples"].isArray());
}

TEST_F(SampleQueueCommandsTest, ListMakesHarmlessWhatAProgramPutIntoTheQueue) {
  queueHolds({{"\033[2J", "\n"}});
  EXPECT_EQ(run({"sample", "list"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("\n\\x1b[2J  \\n\n"));
}

TEST_F(SampleQueueCommandsTest, NextShowsTheOldestAndLeavesIt) {
  queueHolds({{"b2", "/s/1"}, {"b1", "/s/2"}});
  EXPECT_EQ(run({"sample", "next"}), bookstore::kDone);
  EXPECT_EQ(out,
            "BOOK  FILE\n"
            "b2    /s/1\n");
  EXPECT_EQ(run({"sample", "next", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["bookId"], "b2");
  EXPECT_EQ(json()["sampleFilePath"], "/s/1");
  EXPECT_THAT(queued(), SizeIs(2));
}

TEST_F(SampleQueueCommandsTest, NextTellsAnEmptyQueueFromAnEmptyItem) {
  EXPECT_EQ(run({"sample", "next"}), bookstore::kNoSession);
  EXPECT_EQ(err, "bookstore: the queue is empty. Run \"bookstore sample add\".\n");
  EXPECT_THAT(out, IsEmpty());
  queueHolds({{"", ""}});
  EXPECT_EQ(run({"sample", "next"}), bookstore::kDone);
}

TEST_F(SampleQueueCommandsTest, RemoveTakesTheOldestOfTheBook) {
  queueHolds({{"b1", "/s/1"}, {"b2", "/s/2"}, {"b2", "/s/3"}});
  EXPECT_EQ(run({"sample", "remove", "b2"}), bookstore::kDone);
  EXPECT_EQ(out, "Removed the sample of the book b2 for /s/2 from the queue\n");
  EXPECT_THAT(queued(), ElementsAre("b1@/s/1", "b2@/s/3"));
  EXPECT_EQ(run({"sample", "remove", "b2", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["sampleFilePath"], "/s/3");
  EXPECT_THAT(queued(), ElementsAre("b1@/s/1"));
}

TEST_F(SampleQueueCommandsTest, RemoveSaysThatThereWasNone) {
  queueHolds({{"b1", "/s/1"}});
  EXPECT_EQ(run({"sample", "remove", "b"}), bookstore::kNoSession);
  EXPECT_EQ(
      err,
      "bookstore: the queue has no sample of the book \"b\". Use a book that \"bookstore sample "
      "list\" shows.\n");
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(queued(), SizeIs(1));
}

TEST_F(SampleQueueCommandsTest, RemoveSaysThatTheQueueCouldNotBeRewritten) {
  queueHolds({{"b1", "/s/1"}, {"b2", "/s/2"}});
  fake::platform().failAt("SerializeString");
  EXPECT_EQ(run({"sample", "remove", "b1"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("/tmp/sample.queue, could not be rewritten"));
}

TEST_F(SampleQueueCommandsTest, AQueueThatCannotBeLockedIsALocalFailure) {
  queueCannotBeLocked();
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"list"}, {"next"}, {"remove", "b1"}}) {
    std::vector<std::string> command = {"sample"};
    command.insert(command.end(), words.begin(), words.end());
    EXPECT_EQ(run(command), bookstore::kLocalFailure) << words[0];
    EXPECT_THAT(err, HasSubstr("/tmp/sample.queue, cannot be opened and locked"));
    EXPECT_THAT(out, IsEmpty());
  }
}

TEST_F(SampleQueueCommandsTest, TheySendNothing) {
  queueHolds({{"b1", "/s/1"}});
  EXPECT_EQ(run({"sample", "list", "--dry-run", "--curl"}), bookstore::kUsage);
  EXPECT_EQ(run({"sample", "next", "--dry-run", "--curl"}), bookstore::kUsage);
  EXPECT_EQ(run({"sample", "remove", "b1", "--dry-run", "--curl"}), bookstore::kUsage);
  EXPECT_THAT(queued(), SizeIs(1));
}
