#include "tests/support/SystemCallFaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include <gtest/gtest.h>

using support::SystemCallFaults;

TEST(SystemCallFaultsTest, TheCallsThatAreNamedFailAndNoOther) {
  {
    SystemCallFaults faults;
    faults.fail("flock", EINTR, 2, 2);
    const int descriptor = ::open("/tmp", O_RDONLY);
    EXPECT_EQ(::flock(descriptor, LOCK_SH), 0);
    EXPECT_EQ(::flock(descriptor, LOCK_SH), -1);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(::flock(descriptor, LOCK_SH), -1);
    EXPECT_EQ(::flock(descriptor, LOCK_SH), 0);
    EXPECT_EQ(faults.count("flock"), 4);
    EXPECT_EQ(faults.count("open"), 1);
    faults.fail("open", EMFILE, 2);
    EXPECT_EQ(::open("/tmp", O_RDONLY), -1);
    ::close(descriptor);
  }
  const int descriptor = ::open("/tmp", O_RDONLY);
  EXPECT_GE(descriptor, 0);
  ::close(descriptor);
}

TEST(SystemCallFaultsTest, TransfersAreCutShort) {
  const int descriptor = ::open("/tmp/transfer", O_RDWR | O_CREAT | O_TRUNC, 0600);
  ASSERT_GE(descriptor, 0);
  SystemCallFaults faults;
  faults.transferAtMost(2);
  EXPECT_EQ(::write(descriptor, "abc", 3), 2);
  ::lseek(descriptor, 0, SEEK_SET);
  char bytes[3] = {};
  EXPECT_EQ(::read(descriptor, bytes, 3), 2);
  faults.endOfFileAtRead(2);
  ::lseek(descriptor, 0, SEEK_SET);
  EXPECT_EQ(::read(descriptor, bytes, 3), 0);
  ::close(descriptor);
}
