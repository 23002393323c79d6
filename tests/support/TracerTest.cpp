#include "tests/support/Tracer.h"

#include <csignal>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using support::callsOf;
using support::isKilledAt;
using support::runInjected;
using support::SystemCall;

TEST(TracerTest, ListsTheCallsBetweenTheMarksWithTheirNumbers) {
  const std::vector<SystemCall> calls = callsOf({MARKED_WRITER});
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].name, "write");
  EXPECT_EQ(calls[0].number, 2);  // the first one comes before the mark
  EXPECT_EQ(calls[1].number, 3);
}

TEST(TracerTest, KillsAtTheCallThatIsNamed) {
  EXPECT_EQ(runInjected({"write", 3}, "signal=KILL", {MARKED_WRITER}), 128 + SIGKILL);
  EXPECT_EQ(runInjected({"write", 99}, "signal=KILL", {MARKED_WRITER}), 0);
}

TEST(TracerTest, TriesAgainUntilTheCallThatIsNamedIsMet) {
  int runs = 0;
  EXPECT_TRUE(isKilledAt({"write", 3}, {MARKED_WRITER}, [&runs] { ++runs; }));
  EXPECT_EQ(runs, 1);
  EXPECT_FALSE(isKilledAt({"write", 99}, {MARKED_WRITER}, [&runs] { ++runs; }));
  EXPECT_EQ(runs, 21);
}

TEST(TracerTest, LetsTheCallThatIsNamedFail) {
  EXPECT_EQ(runInjected({"write", 2}, "error=EIO", {MARKED_WRITER}), 2);
  EXPECT_EQ(runInjected({"write", 3}, "error=EIO", {MARKED_WRITER}), 3);
}

TEST(TracerTest, ThrowsWhenTheProgramFails) {
  EXPECT_THROW(callsOf({MARKED_WRITER, "fail"}), std::runtime_error);
}
