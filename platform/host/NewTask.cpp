// Starts a task: a process of its own session that shares nothing with the caller, and that the
// system, not the caller, reaps. Its standard streams lead nowhere; its log goes where the settings
// say. The names and the flags of the device's task list have no meaning here.

#include <ov_sdk.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "base/Log.h"
#include "base/Settings.h"
#include "base/WholeFile.h"

namespace {

const int kFirstOwnDescriptor = 3;

// All that the new process needs, made before the fork: behind it, in a process with threads, even
// an allocation could wait for ever.
struct Start {
  std::string path;
  std::vector<char*> arguments;
  std::vector<std::string> environmentTexts;
  std::vector<char*> environment;
  int nothing = -1;  // descriptor of /dev/null
  int report = -1;   // where the new process tells its number and, on failure, an errno
};

int failed(const std::string& path, const char* step, int error) {
  BASE_LOG_FAILURE("Cannot start the task %s: %s: %s; check that the file is there and executable",
                   path.c_str(), step, std::generic_category().message(error).c_str());
  return -1;
}

// The task runs in another current folder: the files that settings name must stay the same.
std::string withAbsolutePath(const std::string& assignment) {
  for (const base::Setting& setting :
       {base::settings::kRoot, base::settings::kCaFile, base::settings::kLogTarget}) {
    const std::string start = std::string(setting.name) + "=";
    const std::string value = assignment.substr(std::min(start.size(), assignment.size()));
    if (assignment.compare(0, start.size(), start) == 0 && !value.empty() && value != "stderr" &&
        value != "syslog") {
      return start + std::filesystem::absolute(value).string();
    }
  }
  return assignment;
}

Start prepare(const char* path, char* const* arguments) {
  Start start;
  start.path = base::hostPath(path);
  for (; arguments != nullptr && *arguments != nullptr; ++arguments) {
    start.arguments.push_back(*arguments);
  }
  if (start.arguments.empty()) {
    start.arguments.push_back(const_cast<char*>(path));
  }
  start.arguments.push_back(nullptr);
  for (char** variable = environ; *variable != nullptr; ++variable) {
    start.environmentTexts.push_back(withAbsolutePath(*variable));
  }
  for (std::string& text : start.environmentTexts) {
    start.environment.push_back(&text[0]);
  }
  start.environment.push_back(nullptr);
  return start;
}

// A caller without standard streams of its own must not get ours in their place.
int aboveStandardStreams(int descriptor) {
  if (descriptor < 0 || descriptor >= kFirstOwnDescriptor) {
    return descriptor;
  }
  const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
  ::close(descriptor);
  return moved;
}

// No signal handler of the caller runs in the new process before it has dropped them.
class AllSignalsBlocked {
 public:
  AllSignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

// --- In the new processes: only calls that are safe in a signal handler ------------------------

void tell(int report, int number) {
  // A pipe takes so few bytes at once. Nothing could be done about a failure.
  if (::write(report, &number, sizeof number) < 0) {
    ::_exit(1);
  }
}

void resetSignals() {
  struct sigaction usual = {};
  usual.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number) {
    ::sigaction(number, &usual, nullptr);
  }
  ::sigprocmask(SIG_SETMASK, &usual.sa_mask, nullptr);
}

// Leaves the report open until the task runs: then it closes by itself.
void closeDescriptorsAtExec() {
  if (::close_range(kFirstOwnDescriptor, ~0U, CLOSE_RANGE_CLOEXEC) == 0) {
    return;
  }
  for (int descriptor = kFirstOwnDescriptor; descriptor < 65536; ++descriptor) {  // old kernels
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
}

[[noreturn]] void becomeTask(const Start& start) {
  tell(start.report, ::getpid());
  for (int descriptor = 0; descriptor < kFirstOwnDescriptor; ++descriptor) {
    ::dup2(start.nothing, descriptor);
  }
  closeDescriptorsAtExec();
  resetSignals();
  if (::chdir("/") == 0) {
    ::execve(start.path.c_str(), start.arguments.data(), start.environment.data());
  }
  tell(start.report, errno);
  ::_exit(127);
}

// The process between caller and task ends at once: the task is left to the system, and is not the
// leader of its session, so no terminal can become its own.
[[noreturn]] void becomeGoBetween(const Start& start) {
  ::setsid();
  const pid_t task = ::fork();
  if (task == 0) {
    becomeTask(start);
  }
  if (task < 0) {
    tell(start.report, -1);
    tell(start.report, errno);
  }
  ::_exit(0);
}

// --- In the caller -----------------------------------------------------------------------------

// Waits until the task runs or has failed. Returns what was told, in `*number` and `*error`.
void listen(int report, int* number, int* error) {
  for (int* told : {number, error}) {
    while (::read(report, told, sizeof *told) < 0 && errno == EINTR) {
    }
  }
}

void reap(pid_t process) {
  while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

int NewTask(const char* path, char* const* arguments, const char*, const char*, const void*,
            unsigned int) {
  if (path == nullptr || *path == '\0') {
    return failed("", "path", EINVAL);
  }
  Start start = prepare(path, arguments);
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return failed(start.path, "pipe", errno);
  }
  const base::Descriptor told(ends[0]);
  base::Descriptor report(aboveStandardStreams(ends[1]));
  const base::Descriptor nothing(aboveStandardStreams(::open("/dev/null", O_RDWR | O_CLOEXEC)));
  if (!report.isOpen() || !nothing.isOpen()) {
    return failed(start.path, "open", errno);
  }
  start.report = report.get();
  start.nothing = nothing.get();

  pid_t goBetween = -1;
  {
    const AllSignalsBlocked blocked;
    goBetween = ::fork();
    if (goBetween == 0) {
      becomeGoBetween(start);
    }
  }
  if (goBetween < 0) {
    return failed(start.path, "fork", errno);
  }
  report.close();
  int number = -1;
  int error = 0;
  listen(told.get(), &number, &error);
  reap(goBetween);
  return error == 0 && number > 0 ? number : failed(start.path, "start", error);
}
