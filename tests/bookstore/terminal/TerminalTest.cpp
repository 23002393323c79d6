#include "bookstore/terminal/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

using bookstore::occupyStandardStreams;
using support::passesInNewProcess;

TEST(TerminalTest, KeepsTheNumbersOfClosedStreamsFromFiles) {
  EXPECT_TRUE(passesInNewProcess([] {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
    occupyStandardStreams();
    EXPECT_GT(::open("/dev/zero", O_RDWR), STDERR_FILENO);
  }));
}

TEST(TerminalTest, LetsClosedStreamsFail) {
  EXPECT_TRUE(passesInNewProcess([] {
    char byte = 'x';
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
      ::close(stream);
      occupyStandardStreams();
      EXPECT_EQ(::write(stream, &byte, 1), -1);
      EXPECT_EQ(errno, EBADF);
    }
    ::close(STDIN_FILENO);
    occupyStandardStreams();
    EXPECT_EQ(::read(STDIN_FILENO, &byte, 1), -1);
  }));
}

TEST(TerminalTest, LeavesOpenStreamsAlone) {
  EXPECT_TRUE(passesInNewProcess([] {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::dup2(ends[1], STDOUT_FILENO);
    occupyStandardStreams();
    EXPECT_EQ(::write(STDOUT_FILENO, "x", 1), 1);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
  }));
}
