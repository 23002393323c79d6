#include "base/DryRun.h"

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

// Whether a child of this process would be in a dry run.
bool isDryRunInAChild() {
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(base::isDryRun() ? 1 : 0);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
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
