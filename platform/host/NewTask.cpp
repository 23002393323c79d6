// Starts a task: a process in a new session that shares nothing with the caller. The system reaps
// it, not the caller. Its standard streams are /dev/null; the settings say where its log goes. The
// names and flags of the device's task list have no effect here.

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

// All data for the new process, prepared before the fork. After the fork of a process with threads,
// even an allocation could block forever.
struct Start {
  std::string path;
  std::vector<char*> arguments;
  std::vector<std::string> environmentTexts;
  std::vector<char*> environment;
  int nothing = -1;  // descriptor of /dev/null
  int report = -1;   // pipe for the new process's id and, on failure, an errno
};

int failed(const std::string& path, const char* step, int error) {
  BASE_LOG_FAILURE("Cannot start the task %s: %s: %s; check that the file is there and executable",
                   path.c_str(), step, std::generic_category().message(error).c_str());
  return -1;
}

// The task runs in another current folder, so relative paths in settings become absolute.
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

// If the caller has no standard streams, our descriptors must not take their numbers.
int aboveStandardStreams(int descriptor) {
  if (descriptor < 0 || descriptor >= kFirstOwnDescriptor) {
    return descriptor;
  }
  const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
  ::close(descriptor);
  return moved;
}

// Blocks all signals: no signal handler of the caller may run in the new process before that
// process has removed the handlers.
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

// --- In the new processes: only async-signal-safe calls ------------------------------------------

void tell(int report, int number) {
  // A pipe takes so few bytes in one write. There is no way to report a failure.
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

// Keeps the report pipe open; it closes itself when the task starts.
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

// The process between caller and task exits at once, so the system reaps the task. The task is not
// the leader of its session, so it cannot get a controlling terminal.
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

// Waits until the task runs or has failed. Returns the report in `*number` and `*error`.
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
