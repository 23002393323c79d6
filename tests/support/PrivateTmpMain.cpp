// Runs the tests in a /tmp of their own. Scripts and programs stay in sight, should
// they live there.

#include <gtest/gtest.h>

#include "tests/support/PrivateTmp.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (!::testing::GTEST_FLAG(list_tests)) {
    support::enterPrivateTmp({SOURCE_FOLDER, BUILD_FOLDER});
  }
  return RUN_ALL_TESTS();
}
