// A worker that is killed at any system call of a removal loses no other item.

#include <csignal>
#include <filesystem>
#include <vector>

#include <gmock/gmock.h>

#include "sample_app/WorkQueue.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/TemporaryRoot.h"
#include "tests/support/Tracer.h"

using sample_app::WorkQueue;
using support::queued;
using support::SystemCall;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::Gt;

namespace {

class KilledRemovalTest : public ::testing::Test {
 protected:
  // A folder that has to be made would add calls to the first removal.
  KilledRemovalTest() { root_.put(sample_app::kJournalPath, ""); }

  void queueHoldsThree() {
    support::queueHolds({{"b", "/1"}, {"b", "/2"}, {"c", "/3"}});
    std::filesystem::remove(root_.at(sample_app::kJournalPath));
  }

  support::TemporaryRoot root_;
};

}  // namespace

TEST_F(KilledRemovalTest, NoSystemCallIsTheWrongOneToBeKilledAt) {
  queueHoldsThree();
  const std::vector<SystemCall> calls = support::callsOf({OLDEST_REMOVER});
  ASSERT_THAT(calls.size(), Gt(20U));
  int recovered = 0;
  for (const SystemCall& call : calls) {
    if (call.name == "exit_group") {
      continue;
    }
    ASSERT_TRUE(support::isKilledAt(call, {OLDEST_REMOVER}, [this] { queueHoldsThree(); }))
        << call.name << call.number;
    const auto left = queued();
    ASSERT_TRUE(WorkQueue().recover());
    // The item is still there or not: the others have to be.
    EXPECT_THAT(queued(), AnyOf(ElementsAre("b@/1", "b@/2", "c@/3"), ElementsAre("b@/2", "c@/3")))
        << call.name << call.number;
    recovered += left == queued() ? 0 : 1;
  }
  // Without the journal it would have been lost there.
  EXPECT_GT(recovered, 0);
}
