// A function in a separate process, so that a crash or a hang of the platform ends that process
// only. Used by one thread; the function must not rely on other threads of this process.

#ifndef PLATFORM_CHECK_CHILD_H_
#define PLATFORM_CHECK_CHILD_H_

#include <sys/types.h>

#include <functional>
#include <string>

namespace platform_check {

enum class Outcome { Passed, Failed, Skipped };

struct Result {
  Outcome outcome;
  std::string reason;  // empty when passed
};

class Child {
 public:
  // Starts a process that runs `function`; its standard output leads to standard error. With
  // `leadsGroup` it leads a process group, and what it starts in that group ends with it.
  explicit Child(const std::function<void()>& function, bool leadsGroup = false);

  // Kills the process if it still runs.
  ~Child();

  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Waits until the process ends, and kills it after `seconds`. Passed when the function returned;
  // Failed when it threw, crashed, ended the process or took too long; Skipped when it threw Skip.
  Result wait(unsigned int seconds);

  // Kills the process at once and waits for its end.
  void kill();

 private:
  bool readReport(unsigned int seconds, std::string* report) const;
  int end(int signal);

  pid_t process_;
  int report_ = -1;
  bool leadsGroup_;
};

// Runs `function` in a new process; throws Failure or Skip as it did.
void inNewProcess(unsigned int seconds, const std::function<void()>& function);

}  // namespace platform_check

#endif  // PLATFORM_CHECK_CHILD_H_
