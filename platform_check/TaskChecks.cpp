// Tasks: NewTask and FindTaskByAppName. The task is a copy of this program.

#include <dlfcn.h>
#include <fcntl.h>
#include <ov_sdk.h>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform_check/Check.h"
#include "platform_check/Child.h"
#include "platform_check/Task.h"

namespace platform_check {

namespace {

namespace fs = std::filesystem;

const unsigned int kFlagsOfTheLibrary = 37;
const int kPollMicroseconds = 10000;

// An executable at a device path, and the tasks that were started from it.
class Application {
 public:
  Application(const Settings& settings, const std::string& name)
      : path_(settings.devicePath(name)),
        realPath_(settings.realPath(name)),
        report_(realPath_ + " report"),
        polls_(settings.timeoutSeconds * (1000000 / kPollMicroseconds) / 4) {
    struct statvfs system = {};
    if (::statvfs(fs::path(realPath_).parent_path().c_str(), &system) == 0 &&
        (system.f_flag & ST_NOEXEC) != 0) {
      throw Skip("no program can run from " + realPath_ + "; set --folder to another place");
    }
    // Not copy_file(): emulators of other processors do not support what it does here.
    std::ofstream(realPath_, std::ios::binary) << contentOf("/proc/self/exe");
    fs::permissions(realPath_, fs::perms::owner_all);
    findPlatformLibraries();
  }

  // Ends the task.
  ~Application() { std::ofstream(report_ + ".end") << "end\n"; }

  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const std::string& path() const { return path_; }
  const std::string& report() const { return report_; }

  // Calls NewTask as the library does, and overwrites what was passed as soon as it returns.
  int start() const {
    std::vector<char*> arguments = {::strdup(path_.c_str()), ::strdup(kTaskArgument),
                                    ::strdup(report_.c_str()), nullptr};
    char* const name = ::strdup("task.app");
    char* const path = ::strdup(path_.c_str());
    const int result = NewTask(path, arguments.data(), name, name, nullptr, kFlagsOfTheLibrary);
    for (char* text : {arguments[0], arguments[1], arguments[2], name, path}) {
      std::memset(text, '?', std::strlen(text));
      std::free(text);
    }
    arguments.assign(arguments.size(), nullptr);
    return result;
  }

  // Waits for the report of the task, and returns its lines.
  std::vector<std::string> lines() const {
    for (unsigned int i = 0; i < polls_ && !fs::exists(report_); ++i) {
      ::usleep(kPollMicroseconds);
    }
    require(fs::exists(report_),
            "the task did not run with its arguments: it did not write " + report_);
    std::istringstream in(contentOf(report_));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  // Ends the task and waits until it is not found any more.
  bool isLostAfterItsEnd() const {
    std::ofstream(report_ + ".end") << "end\n";
    for (unsigned int i = 0; i < polls_; ++i) {
      if (FindTaskByAppName(path_.c_str()) <= 0) {
        return true;
      }
      ::usleep(kPollMicroseconds);
    }
    return false;
  }

 private:
  // The copy does not lie where this program looks for the platform's libraries.
  static void findPlatformLibraries() {
    Dl_info library = {};
    if (::dladdr(reinterpret_cast<void*>(&GetDeviceModel), &library) == 0 ||
        std::strchr(library.dli_fname, '/') == nullptr) {
      return;
    }
    const char* before = std::getenv("LD_LIBRARY_PATH");
    const std::string folder = fs::absolute(library.dli_fname).parent_path().string();
    ::setenv("LD_LIBRARY_PATH", (before == nullptr ? folder : folder + ":" + before).c_str(), 1);
  }

  const std::string path_;
  const std::string realPath_;
  const std::string report_;
  const unsigned int polls_;
};

void startsATask(const Settings& settings) {
  const Application application(settings, "start.app");
  const int result = application.start();
  require(result > 0, "NewTask() returned " + std::to_string(result));
  application.lines();
}

void argumentsAreCopied(const Settings& settings) {
  const Application application(settings, "arguments.app");
  application.start();
  const std::vector<std::string> lines = application.lines();
  requireEqual("the number of lines in the report of the task",
               static_cast<long long>(lines.size()), 5);
  requireEqual("argument 0", lines[2], application.path());
  requireEqual("argument 1", lines[3], kTaskArgument);
  requireEqual("argument 2", lines[4], application.report());
}

void missingExecutableIsAnError(const Settings& settings) {
  std::string path = settings.devicePath("missing.app");
  char* arguments[] = {&path[0], nullptr};
  const int result =
      NewTask(path.c_str(), arguments, "missing.app", "missing.app", nullptr, kFlagsOfTheLibrary);
  require(result <= 0, "NewTask() returned " + std::to_string(result));
}

void isFoundWhileItRuns(const Settings& settings) {
  const Application application(settings, "find.app");
  require(FindTaskByAppName(application.path().c_str()) <= 0, "it was found before it was started");
  application.start();
  application.lines();
  require(FindTaskByAppName(application.path().c_str()) > 0,
          "it was not found while it was running");
}

void isNotFoundAfterItsEnd(const Settings& settings) {
  const Application application(settings, "end.app");
  application.start();
  application.lines();
  require(application.isLostAfterItsEnd(), "it was still found after its end");
}

void othersAreNotFound(const Settings& settings) {
  const Application application(settings, "one.app");
  const Application other(settings, "other.app");
  application.start();
  application.lines();
  require(FindTaskByAppName(other.path().c_str()) <= 0,
          "another application was found in its place");
  require(FindTaskByAppName(settings.devicePath("missing.app").c_str()) <= 0,
          "an application that does not exist was found");
}

void outlivesItsCaller(const Settings& settings) {
  const Application application(settings, "outlives.app");
  {
    Child caller(
        [&application] {
          application.start();
          application.lines();
        },
        true);
    const Result result = caller.wait(settings.timeoutSeconds);
    require(result.outcome == Outcome::Passed, result.reason);
  }  // ends with its process group
  ::usleep(10 * kPollMicroseconds);
  require(FindTaskByAppName(application.path().c_str()) > 0,
          "the task ended with the process that had started it");
}

void hasASessionOfItsOwn(const Settings& settings) {
  const Application application(settings, "session.app");
  application.start();
  const std::vector<std::string> lines = application.lines();
  require(lines.at(1) != std::to_string(::getsid(0)), "the task is in the session of its caller");
}

void inheritsNoLock(const Settings& settings) {
  const std::string file = settings.realPath("queue.lock");
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT, 0600);
  require(::flock(descriptor, LOCK_EX) == 0, "cannot lock " + file);
  const Application application(settings, "lock.app");
  application.start();
  application.lines();
  ::close(descriptor);
  const int again = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
  const bool isFree = ::flock(again, LOCK_EX | LOCK_NB) == 0;
  ::close(again);
  require(isFree, "the task inherited a descriptor and keeps the lock of a file");
}

}  // namespace

const std::vector<Check> kTaskChecks = {
    {"tasks", "starts-a-task",
     "Start the executable at the path with the arguments and return a value greater than 0.",
     &startsATask},
    {"tasks", "arguments-are-copied",
     "Copy path, arguments and names before NewTask() returns: the caller frees them.",
     &argumentsAreCopied},
    {"tasks", "missing-executable-is-an-error", "Return 0 or less when the task did not start.",
     &missingExecutableIsAnError},
    {"tasks", "is-found-while-it-runs",
     "Compare the full path, as the caller gives it, with the executables of the running tasks.",
     &isFoundWhileItRuns},
    {"tasks", "is-not-found-after-its-end",
     "Wait for ended processes, so that none stays a zombie.", &isNotFoundAfterItsEnd},
    {"tasks", "others-are-not-found", "Compare full paths, not parts of names.",
     &othersAreNotFound},
    {"tasks", "outlives-its-caller", "Start the task in a separate session (setsid).",
     &outlivesItsCaller},
    {"tasks", "has-a-session-of-its-own", "Start the task in a separate session (setsid).",
     &hasASessionOfItsOwn},
    {"tasks", "inherits-no-lock", "Close all descriptors above 2 before the task runs.",
     &inheritsNoLock},
};

}  // namespace platform_check
