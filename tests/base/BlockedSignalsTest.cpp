#include "base/BlockedSignals.h"

#include <unistd.h>

#include <chrono>
#include <csignal>

#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

using base::BlockedSignals;
using Wakeup = base::BlockedSignals::Wakeup;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kLong(600000);

volatile std::sig_atomic_t arrived = 0;

void note(int) {
  arrived = 1;
}

class BlockedSignalsTest : public ::testing::Test {
 protected:
  BlockedSignalsTest() {
    if (::pipe(ends_) != 0) {
      ADD_FAILURE();
    }
  }
  ~BlockedSignalsTest() override {
    ::close(ends_[0]);
    ::close(ends_[1]);
  }

  int readEnd() const { return ends_[0]; }
  void makeReadable() const { EXPECT_EQ(::write(ends_[1], "x", 1), 1); }

 private:
  int ends_[2] = {-1, -1};
};

}  // namespace

TEST_F(BlockedSignalsTest, AWaitEndsWithItsTime) {
  const BlockedSignals signals({SIGTERM});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(signals.wait(milliseconds(20), readEnd()), Wakeup::Timeout);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(20));
}

TEST_F(BlockedSignalsTest, AReadableDescriptorEndsAWait) {
  const BlockedSignals signals({SIGTERM});
  makeReadable();
  EXPECT_EQ(signals.wait(kLong, readEnd()), Wakeup::Readable);
  EXPECT_EQ(signals.wait(BlockedSignals::kForever, readEnd()), Wakeup::Readable);
}

TEST_F(BlockedSignalsTest, ASignalCountsBeforeAReadableDescriptor) {
  EXPECT_TRUE(support::passesInNewProcess([this] {
    std::signal(SIGTERM, note);
    const BlockedSignals signals({SIGTERM});
    makeReadable();
    ::raise(SIGTERM);
    ASSERT_EQ(signals.wait(kLong, readEnd()), Wakeup::Signal);
    EXPECT_EQ(signals.wait(BlockedSignals::kForever), Wakeup::Signal);
  }));
}

TEST_F(BlockedSignalsTest, ASignalTakesEffectWhenTheObjectIsGone) {
  EXPECT_TRUE(support::passesInNewProcess([] {
    std::signal(SIGTERM, note);
    {
      const BlockedSignals signals({SIGTERM});
      ::raise(SIGTERM);
      EXPECT_EQ(arrived, 0);
    }
    EXPECT_EQ(arrived, 1);
  }));
}
