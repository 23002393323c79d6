#include "sample_app/WorkerLock.h"

#include <sys/stat.h>

#include <memory>

#include "tests/sample_app/SampleAppTest.h"
#include "tests/support/NewProcess.h"

using sample_app::kWorkerLockPath;
using sample_app::WorkerLock;

namespace {

class WorkerLockTest : public SampleAppTest {
 protected:
  WorkerLockTest() { std::filesystem::remove_all(kWorkerLockPath); }
};

}  // namespace

TEST_F(WorkerLockTest, OneHasItAtATime) {
  auto first = std::make_unique<WorkerLock>();
  EXPECT_EQ(first->state(), WorkerLock::State::Held);
  EXPECT_TRUE(support::passesInNewProcess(
      [] { EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Busy); }));
  first.reset();
  EXPECT_TRUE(support::passesInNewProcess(
      [] { EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Held); }));
}

TEST_F(WorkerLockTest, HoldsForAllRootsOfTheMachine) {
  const WorkerLock first;
  const support::TemporaryRoot other;
  EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Busy);
}

TEST_F(WorkerLockTest, AnotherUserCanTakeItToo) {
  { const WorkerLock makesTheFile; }
  struct stat status = {};
  ASSERT_EQ(::stat(kWorkerLockPath, &status), 0);
  EXPECT_EQ(status.st_mode & 0444U, 0444U);
}

TEST_F(WorkerLockTest, FollowsNoLinkAndTakesNoFolder) {
  std::filesystem::create_symlink(root.at("/victim"), kWorkerLockPath);
  EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Failed);
  EXPECT_FALSE(std::filesystem::exists(root.at("/victim")));
  root.put("/victim", "");
  EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Failed);
  std::filesystem::remove(kWorkerLockPath);
  std::filesystem::create_directory(kWorkerLockPath);
  EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Failed);
  EXPECT_EQ(platform().logTexts(kFailureLevel).size(), 3U);
}

TEST_F(WorkerLockTest, APipeDoesNotHoldItUp) {
  ASSERT_EQ(::mkfifo(kWorkerLockPath, 0600), 0);
  EXPECT_EQ(WorkerLock().state(), WorkerLock::State::Failed);
}
