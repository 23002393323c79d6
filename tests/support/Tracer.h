// Programs whose system calls are watched, killed or made to fail, by strace. A program marks the
// part that a test is about with a call of getppid() before it and, if more follows, one after it.

#ifndef TESTS_SUPPORT_TRACER_H_
#define TESTS_SUPPORT_TRACER_H_

#include <functional>
#include <string>
#include <vector>

namespace support {

// A system call: its name, and which call of that name in the process it is, counted from 1.
struct SystemCall {
  std::string name;
  int number;
};

// The system calls of the marked part of `command`, in order, without the marks and without mmap()
// and munmap(), which a sanitizer's allocator calls at other times in each run. Throws
// std::runtime_error when the command does not end with 0.
std::vector<SystemCall> callsOf(const std::vector<std::string>& command);

// Runs `command`, where `call` is changed as strace's option inject names it: "signal=KILL" or
// "error=EIO". Returns its code as Ended has it.
int runInjected(const SystemCall& call, const std::string& what,
                const std::vector<std::string>& command);

// Runs `command`, after `prepare`, until it is killed at `call`. The start of a sanitized program
// makes a varying number of calls, so that a run can miss. False when 20 runs missed.
bool isKilledAt(const SystemCall& call, const std::vector<std::string>& command,
                const std::function<void()>& prepare);

}  // namespace support

#endif  // TESTS_SUPPORT_TRACER_H_
