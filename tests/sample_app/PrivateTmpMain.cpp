// Runs the tests in a /tmp of their own. What was built stays in sight, should it live there.

#include <gtest/gtest.h>

#include "tests/support/PrivateTmp.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (!::testing::GTEST_FLAG(list_tests)) {
    support::enterPrivateTmp(BUILD_FOLDER);
  }
  return RUN_ALL_TESTS();
}
