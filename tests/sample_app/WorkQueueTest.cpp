#include "sample_app/WorkQueue.h"

#include <fcntl.h>
#include <sys/file.h>

#include <fstream>

#include "tests/sample_app/SampleAppTest.h"

using sample_app::kJournalPath;
using sample_app::WorkQueue;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class WorkQueueTest : public SampleAppTest {
 protected:
  void journalHolds(const std::string& bytes) { root.put(kJournalPath, bytes); }
  bool journalExists() const { return std::filesystem::exists(root.at(kJournalPath)); }

  static bool isLocked() {
    const int descriptor = ::open(kQueuePath, O_RDONLY | O_CLOEXEC);
    const bool locked = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    ::close(descriptor);
    return locked;
  }

  WorkQueue queue;
};

}  // namespace

TEST_F(WorkQueueTest, TheOldestItemStays) {
  queueHolds({{"b1", "/1"}, {"b2", "/2"}});
  EXPECT_EQ(sample_app::oldestItem()->bookId, "b1");
  EXPECT_EQ(sample_app::oldestItem()->sampleFilePath, "/1");
  EXPECT_FALSE(isLocked());
}

TEST_F(WorkQueueTest, AnEmptyQueueHasNoOldestItem) {
  EXPECT_FALSE(sample_app::oldestItem());
}

TEST_F(WorkQueueTest, AnItemOfTwoEmptyTextsIsOne) {
  queueHolds({{"", ""}, {"b2", "/2"}});
  ASSERT_TRUE(sample_app::oldestItem());
  EXPECT_EQ(sample_app::oldestItem()->bookId, "");
  EXPECT_TRUE(queue.removeOldest({"", ""}));
  EXPECT_EQ(sample_app::oldestItem()->bookId, "b2");
}

TEST_F(WorkQueueTest, ADamagedFileIsWorkedOffToItsEnd) {
  std::ofstream(kQueuePath) << "no item at all";
  int steps = 0;
  while (const auto item = sample_app::oldestItem()) {
    ASSERT_TRUE(queue.removeOldest(*item));
    ASSERT_LT(++steps, 5);
  }
  EXPECT_EQ(steps, 1);
}

TEST_F(WorkQueueTest, RemovesTheOlderOfTwoItemsOfOneBook) {
  queueHolds({{"b", "/1"}, {"c", "/2"}, {"b", "/3"}});
  EXPECT_TRUE(queue.removeOldest({"b", "/1"}));
  EXPECT_THAT(queued(), ElementsAre("c@/2", "b@/3"));
  EXPECT_FALSE(journalExists());
}

TEST_F(WorkQueueTest, RemovesNothingElseWhenSomebodyWasFaster) {
  queueHolds({{"b", "/3"}, {"c", "/2"}});
  EXPECT_TRUE(queue.removeOldest({"b", "/1"}));
  EXPECT_THAT(queued(), ElementsAre("b@/3", "c@/2"));
}

TEST_F(WorkQueueTest, AQueueThatCannotBeRewrittenIsTold) {
  queueHolds({{"b1", "/1"}, {"b2", "/2"}});
  platform().failAt("SerializeString", 3);  // after those of the journal
  EXPECT_FALSE(queue.removeOldest({"b1", "/1"}));
  EXPECT_TRUE(journalExists());
  EXPECT_TRUE(queue.recover());
  EXPECT_THAT(queued(), ElementsAre("b2@/2"));
}

TEST_F(WorkQueueTest, NothingIsRewrittenWithoutAJournal) {
  queueHolds({{"b1", "/1"}, {"b2", "/2"}});
  std::filesystem::create_directories(root.at(kJournalPath));
  EXPECT_FALSE(queue.removeOldest({"b1", "/1"}));
  EXPECT_THAT(queued(), ElementsAre("b1@/1", "b2@/2"));
}

TEST_F(WorkQueueTest, AQueueThatCannotBeLockedIsLeftAlone) {
  std::filesystem::create_directory(kQueuePath);
  EXPECT_FALSE(queue.removeOldest({"b", "/1"}));
}

// --- After a worker was killed -------------------------------------------------------------------

TEST_F(WorkQueueTest, RecoversWhatAnEmptiedFileHasLost) {
  std::ofstream(kQueuePath).flush();
  journalHolds("2:b22:/22:b32:/3");
  EXPECT_TRUE(queue.recover());
  EXPECT_THAT(queued(), ElementsAre("b2@/2", "b3@/3"));
  EXPECT_FALSE(journalExists());
  EXPECT_FALSE(isLocked());
}

TEST_F(WorkQueueTest, WhatWasAddedMeanwhileFollows) {
  queueHolds({{"b3", "/3"}, {"new", "/4"}, {"b3", "/3"}});
  journalHolds("2:b22:/22:b32:/3");
  EXPECT_TRUE(queue.recover());
  EXPECT_THAT(queued(), ElementsAre("b2@/2", "b3@/3", "new@/4", "b3@/3"));
}

TEST_F(WorkQueueTest, AQueueThatLacksNothingIsLeftAlone) {
  queueHolds({{"b1", "/1"}, {"b2", "/2"}, {"new", "/4"}});
  journalHolds("2:b22:/2");
  EXPECT_TRUE(queue.recover());
  EXPECT_THAT(queued(), ElementsAre("b1@/1", "b2@/2", "new@/4"));
  EXPECT_FALSE(journalExists());
}

TEST_F(WorkQueueTest, WithoutAJournalThereIsNothingToRecover) {
  queueHolds({{"b1", "/1"}});
  platform().calls.clear();
  EXPECT_TRUE(queue.recover());
  EXPECT_THAT(platform().calls, IsEmpty());
}

TEST_F(WorkQueueTest, TheJournalOutlivesAFailedRecovery) {
  journalHolds("2:b22:/2");
  platform().failAt("SerializeString");
  EXPECT_FALSE(queue.recover());
  EXPECT_TRUE(journalExists());
}

// --- The end -------------------------------------------------------------------------------------

TEST_F(WorkQueueTest, AnEmptyQueueIsClosedWithItsLockHeld) {
  {
    WorkQueue ending;
    EXPECT_TRUE(ending.closeIfEmpty());
    EXPECT_TRUE(isLocked());
  }
  EXPECT_FALSE(isLocked());
}

TEST_F(WorkQueueTest, AQueueWithAnItemIsNotClosed) {
  queueHolds({{"", ""}});
  EXPECT_FALSE(queue.closeIfEmpty());
  EXPECT_FALSE(isLocked());
}
