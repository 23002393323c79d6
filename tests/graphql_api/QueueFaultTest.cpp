// The queue when the kernel refuses a system call of a step: each call in turn, with each error. A
// tracer plays the kernel.

#include <string>
#include <vector>

#include "tests/support/PlatformTest.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/Tracer.h"

using support::queued;
using support::SystemCall;
using ::testing::AnyOf;
using ::testing::ElementsAre;

namespace {

class QueueFaultTest : public PlatformTest {
 protected:
  static void queueHoldsTwo() { support::queueHolds({{"b1", "/1"}, {"b2", "/2"}}); }

  // What is left in the queue has to match `allowed`, whatever fails.
  static void tryEachFault(const std::string& step,
                           const ::testing::Matcher<std::vector<std::string>>& allowed) {
    queueHoldsTwo();
    const std::vector<SystemCall> calls = support::callsOf({QUEUE_STEP, step});
    ASSERT_GE(calls.size(), 5U);
    for (const SystemCall& call : calls) {
      for (const std::string error : {"EIO", "EMFILE", "EINTR", "EAGAIN", "ENOSPC"}) {
        if (call.name == "write" && error != "EINTR") {
          continue;  // the file is truncated by then: the one write that the header names
        }
        queueHoldsTwo();
        EXPECT_EQ(support::runInjected(call, "error=" + error, {QUEUE_STEP, step}), 0);
        EXPECT_THAT(queued(), allowed) << call.name << call.number << " " << error;
      }
    }
  }
};

}  // namespace

TEST_F(QueueFaultTest, AddingLosesNoItem) {
  tryEachFault("add",
               AnyOf(ElementsAre("b1@/1", "b2@/2"), ElementsAre("b1@/1", "b2@/2", "new@/new")));
}

TEST_F(QueueFaultTest, RemovingLosesNoOtherItem) {
  tryEachFault("remove", AnyOf(ElementsAre("b1@/1", "b2@/2"), ElementsAre("b2@/2")));
}

TEST_F(QueueFaultTest, TakingTheNextItemLosesNone) {
  tryEachFault("next", ElementsAre("b1@/1", "b2@/2"));
}
