#include "base/DryRun.h"

#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"

namespace {

// True if a child of this process would be in a dry run.
bool isDryRunInAChild() {
  const int status = support::statusOfNewProcess([] { return base::isDryRun() ? 1 : 0; });
  EXPECT_TRUE(WIFEXITED(status));
  return WEXITSTATUS(status) == 1;
}

}  // namespace

TEST(DryRunTest, HoldsFromTheCallToTheNextOne) {
  EXPECT_FALSE(base::isDryRun());
  base::setDryRun(true);
  EXPECT_TRUE(base::isDryRun());
  base::setDryRun(false);
  EXPECT_FALSE(base::isDryRun());
}

TEST(DryRunTest, DoesNotHoldForAChild) {
  base::setDryRun(true);
  EXPECT_FALSE(isDryRunInAChild());
  base::setDryRun(false);
}
