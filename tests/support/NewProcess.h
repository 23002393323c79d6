// For tests of state that a process has only once, and of what ends a process.

#ifndef TESTS_SUPPORT_NEWPROCESS_H_
#define TESTS_SUPPORT_NEWPROCESS_H_

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

#include <gtest/gtest.h>

namespace support {

// Runs `body` in a copy of this process, which ends with the number that `body` returns. Returns
// how the copy ended, in the form of waitpid().
template <typename Body>
int statusOfNewProcess(Body body) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    const int code = body();
    std::fflush(nullptr);
    ::_exit(code);
  }
  int status = -1;
  if (child < 0 || ::waitpid(child, &status, 0) != child) {
    throw std::runtime_error("cannot run a new process");
  }
  return status;
}

// Runs `body`, expectations and all, in a copy of this process. True when none of them failed.
template <typename Body>
bool passesInNewProcess(Body body) {
  return statusOfNewProcess([&body] {
           body();
           return ::testing::Test::HasFailure() ? 1 : 0;
         }) == 0;
}

}  // namespace support

#endif  // TESTS_SUPPORT_NEWPROCESS_H_
