#include "tests/support/SampleQueueFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class SampleQueueFileTest : public ::testing::Test {
 protected:
  SampleQueueFileTest() { support::removeQueue(); }
};

}  // namespace

TEST_F(SampleQueueFileTest, HoldsWhatItIsGivenInOrder) {
  support::queueHolds({{"b", "/2"}, {"a", "/1"}});
  EXPECT_THAT(support::queued(), ElementsAre("b@/2", "a@/1"));
  EXPECT_THAT(support::queuedUnderLock(), ElementsAre("b@/2", "a@/1"));
  support::removeQueue();
  EXPECT_THAT(support::queued(), IsEmpty());
}

TEST_F(SampleQueueFileTest, IsRemovedThoughItIsAFolder) {
  std::filesystem::create_directories(std::string(support::kQueuePath) + "/a");
  support::removeQueue();
  EXPECT_FALSE(std::filesystem::exists(support::kQueuePath));
}

TEST_F(SampleQueueFileTest, LeavesNoLock) {
  support::queueHolds({{"a", "/1"}});
  support::queuedUnderLock();
  EXPECT_TRUE(support::passesInNewProcess([] {
    const int descriptor = ::open(support::kQueuePath, O_RDONLY);
    EXPECT_EQ(::flock(descriptor, LOCK_EX | LOCK_NB), 0);
  }));
}
