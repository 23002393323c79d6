#include "tests/support/WaitUntil.h"

#include <chrono>

#include <gtest/gtest.h>

using support::waitUntil;

TEST(WaitUntilTest, AsksUntilItHolds) {
  int asked = 0;
  EXPECT_TRUE(waitUntil([&asked] { return ++asked == 3; }));
  EXPECT_EQ(asked, 3);
}

TEST(WaitUntilTest, GivesUpWhenItNeverHolds) {
  EXPECT_FALSE(waitUntil([] { return false; }, std::chrono::milliseconds(5)));
}
