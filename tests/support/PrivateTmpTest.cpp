// PrivateTmpMain.cpp has entered the private /tmp.

#include "tests/support/PrivateTmp.h"

#include <sys/stat.h>

#include <filesystem>

#include <gtest/gtest.h>

TEST(PrivateTmpTest, IsAFileSystemOfThisProgram) {
  struct stat outer = {};
  struct stat inner = {};
  ASSERT_EQ(::stat("/", &outer), 0);
  ASSERT_EQ(::stat("/tmp", &inner), 0);
  EXPECT_NE(outer.st_dev, inner.st_dev);
  EXPECT_TRUE(std::filesystem::exists(SOURCE_FOLDER)) << "is not in sight any more";
}
