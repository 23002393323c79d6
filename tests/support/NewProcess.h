// For tests of state that a process has only once.

#ifndef TESTS_SUPPORT_NEWPROCESS_H_
#define TESTS_SUPPORT_NEWPROCESS_H_

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include <gtest/gtest.h>

namespace support {

// Runs `body`, expectations and all, in a process of its own. True when none of them failed.
template <typename Body>
bool passesInNewProcess(Body body) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    body();
    std::fflush(nullptr);
    ::_exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace support

#endif  // TESTS_SUPPORT_NEWPROCESS_H_
