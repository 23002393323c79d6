#include "sample_app/SignalWaiter.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

using sample_app::SignalWaiter;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kLong(600000);

}  // namespace

TEST(SignalWaiterTest, WaitsForTheTime) {
  EXPECT_TRUE(support::passesInNewProcess([] {
    SignalWaiter waiter({SIGTERM, SIGINT});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(waiter.wait(milliseconds(20)));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(20));
    EXPECT_TRUE(waiter.wait(milliseconds(0)));
  }));
}

TEST(SignalWaiterTest, EitherSignalEndsEveryWaitFromThenOn) {
  for (const int signal : {SIGTERM, SIGINT}) {
    EXPECT_TRUE(support::passesInNewProcess([signal] {
      SignalWaiter waiter({SIGTERM, SIGINT});
      ::raise(signal);  // interrupts nothing
      EXPECT_FALSE(waiter.wait(milliseconds(0)));
      EXPECT_FALSE(waiter.wait(kLong));
      std::signal(signal, SIG_IGN);  // it would end this process with the waiter
    }));
  }
}

TEST(SignalWaiterTest, ASignalCutsAWaitShort) {
  EXPECT_TRUE(support::passesInNewProcess([] {
    SignalWaiter waiter({SIGTERM, SIGINT});
    std::thread other([] {
      std::this_thread::sleep_for(milliseconds(20));
      ::kill(::getpid(), SIGTERM);
    });
    EXPECT_FALSE(waiter.wait(kLong));
    other.join();
    std::signal(SIGTERM, SIG_IGN);  // it would end this process with the waiter
  }));
}
