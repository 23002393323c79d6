#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

using support::Ended;
using support::Lifeline;
using support::outputOf;
using support::run;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(ChildProcessTest, HasTheCodeAndBothStreams) {
  const Ended ended = run({"sh", "-c", "echo out; echo err >&2; exit 3"});
  EXPECT_EQ(ended.code, 3);
  EXPECT_EQ(ended.output, "out\nerr\n");
}

TEST(ChildProcessTest, ASignalIsACodeAbove128) {
  EXPECT_EQ(run({"sh", "-c", "kill -KILL $$"}).code, 128 + SIGKILL);
}

TEST(ChildProcessTest, WhatCannotBeStartedEndsWith127) {
  EXPECT_EQ(run({"/nowhere/program"}).code, 127);
}

TEST(ChildProcessTest, ReadsItsInputAndNothingElse) {
  const std::string input = std::string(100000, 'x') + '\0' + "end";
  EXPECT_EQ(run({"cat"}, input).output, input);
  EXPECT_EQ(run({"cat"}).output, "");
}

TEST(ChildProcessTest, NoShellReadsTheArguments) {
  EXPECT_EQ(outputOf({"printf", "%s", "$HOME * ;"}), "$HOME * ;");
  EXPECT_EQ(support::outputOfShell("echo a; echo b"), "a\nb\n");
}

TEST(ChildProcessTest, TheOutputOfAFailureIsInTheException) {
  EXPECT_THAT(
      [] {
        outputOf({"sh", "-c", "echo why; exit 4"});
      },
      ThrowsMessage<std::runtime_error>(AllOf(HasSubstr("4"), HasSubstr("why"))));
}

TEST(ChildProcessTest, ALifelineIsOpenAsLongAsItsOwner) {
  int output[2];
  ASSERT_EQ(::pipe2(output, O_CLOEXEC), 0);
  // The owner is killed: nothing in it closes the lifeline.
  EXPECT_NE(
      support::statusOfNewProcess([&output] {
        const Lifeline lifeline;
        support::start({"sh", "-c", "echo runs; cat; echo ends"}, lifeline.childEnd(), output[1]);
        char byte = 0;
        while (::read(output[0], &byte, 1) == 1 && byte != '\n') {
        }
        ::raise(SIGKILL);
        return 0;
      }),
      0);
  ::close(output[1]);
  char text[16] = {};
  EXPECT_EQ(::read(output[0], text, sizeof(text) - 1), 5);
  EXPECT_EQ(std::string(text), "ends\n");
  ::close(output[0]);
}
