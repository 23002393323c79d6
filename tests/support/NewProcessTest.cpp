#include "tests/support/NewProcess.h"

#include <csignal>

#include <gtest/gtest.h>

using support::passesInNewProcess;
using support::statusOfNewProcess;

TEST(NewProcessTest, LeavesTheStateOfThisProcessAlone) {
  int state = 1;
  EXPECT_TRUE(passesInNewProcess([&state] {
    state = 2;
    EXPECT_EQ(state, 2);
  }));
  EXPECT_EQ(state, 1);
}

TEST(NewProcessTest, DoesNotPassWhenAnExpectationFails) {
  EXPECT_FALSE(passesInNewProcess([] { ADD_FAILURE() << "meant to be printed"; }));
  EXPECT_FALSE(passesInNewProcess([] { ::raise(SIGKILL); }));
}

TEST(NewProcessTest, HasTheStatusOfTheEnd) {
  EXPECT_EQ(WEXITSTATUS(statusOfNewProcess([] { return 7; })), 7);
  const int status = statusOfNewProcess([] { return ::raise(SIGTERM); });
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
}
