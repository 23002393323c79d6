// Tasks: processes in a new session, started with posix_spawn and found in /proc.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <vector>

#include "Firmware.h"

namespace fs = std::filesystem;

namespace {

// Somebody must wait for an ended child, or it remains a zombie. A task manager does that in a
// separate process; here each call reaps the children of earlier calls.
void reapEnded(pid_t started = 0) {
  static std::mutex mutex;
  static std::vector<pid_t> tasks;
  const std::lock_guard<std::mutex> guard(mutex);
  const auto hasEnded = [](pid_t task) { return ::waitpid(task, nullptr, WNOHANG) != 0; };
  tasks.erase(std::remove_if(tasks.begin(), tasks.end(), hasEnded), tasks.end());
  if (started > 0) {
    tasks.push_back(started);
  }
}

}  // namespace

// The task gets the environment and standard error of this process, and nothing else.
int NewTask(const char* path, char* const* arguments, const char*, const char*, const void*,
            unsigned int) {
  reapEnded();
  sigset_t all;
  sigset_t none;
  ::sigfillset(&all);
  ::sigemptyset(&none);
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setsigdefault(&attributes, &all);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  posix_spawn_file_actions_t files;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDWR, 0);
  ::posix_spawn_file_actions_adddup2(&files, STDIN_FILENO, STDOUT_FILENO);
  ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
  pid_t task = -1;
  const int error = ::posix_spawn(&task, firmware::realPath(path).c_str(), &files, &attributes,
                                  arguments, environ);
  ::posix_spawn_file_actions_destroy(&files);
  ::posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    ov_print_log2(2, __FILE__, __LINE__, __func__, "Cannot start %s: %s", path,
                  std::strerror(error));
    return -1;
  }
  reapEnded(task);
  return task;
}

int FindTaskByAppName(const char* path) {
  reapEnded();
  const fs::path application = firmware::realPath(path);
  std::error_code error;  // ignored: processes come and go, and other users' are hidden
  for (fs::directory_iterator process("/proc", error); process != fs::directory_iterator();
       process.increment(error)) {
    const int number = std::atoi(process->path().filename().c_str());
    if (number > 0 && fs::equivalent(process->path() / "exe", application, error)) {
      return number;
    }
  }
  return 0;
}
