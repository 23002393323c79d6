// Finds running tasks among the processes of this user, in /proc. A process that has ended and
// waits to be reaped has no executable any more, and so is none of them.
//
// An executable is told by its file, not by its name. A script runs as its interpreter; it counts
// when its process has the arguments that the system gives to a script which is started as an
// executable. Where two roots share one file, the root in the process's environment decides.

#include <ov_sdk.h>

#include <dirent.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/Settings.h"

namespace {

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The texts of a file of /proc in which each ends with a NUL.
std::vector<std::string> textsOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::string> texts;
  for (std::string text; std::getline(in, text, '\0');) {
    texts.push_back(text);
  }
  return texts;
}

// The arguments of a process. The system shows none for an instant while a process becomes another
// program, as "env" does.
std::vector<std::string> argumentsOf(const std::string& process) {
  std::vector<std::string> arguments;
  for (int attempt = 0; arguments.empty() && attempt < 100; ++attempt) {
    arguments = textsOf(process + "/cmdline");
    if (arguments.empty()) {
      ::sched_yield();
    }
  }
  return arguments;
}

std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') {
    path.pop_back();
  }
  return path;
}

// False when the process names another root. One that names none, or one relative to a folder that
// we do not know, is taken for one of ours.
bool isOfThisRoot(const std::string& process) {
  const std::string start = std::string(host::settings::kRoot.name) + "=";
  for (const std::string& variable : textsOf(process + "/environ")) {
    if (variable.compare(0, start.size(), start) == 0 && variable[start.size()] == '/') {
      return withoutTrailingSlash(variable.substr(start.size())) == host::rootFolder();
    }
  }
  return true;
}

class Application {
 public:
  explicit Application(const std::string& path)
      : path_(path), exists_(::stat(path.c_str(), &status_) == 0 && S_ISREG(status_.st_mode)) {
    if (exists_) {
      readInterpreterLine();
    }
  }

  bool exists() const { return exists_; }

  bool isRunBy(const std::string& process) const {
    struct stat folder = {};
    struct stat executable = {};
    return ::stat(process.c_str(), &folder) == 0 && folder.st_uid == ::geteuid() &&
           ::stat((process + "/exe").c_str(), &executable) == 0 &&
           (isSameFile(executable, status_) || isScriptRunBy(process)) && isOfThisRoot(process);
  }

 private:
  // "#!interpreter argument": the argument, if any, is one text, blanks and all. An interpreter
  // "env" replaces itself by the program that the argument names.
  void readInterpreterLine() {
    std::ifstream in(path_, std::ios::binary);
    char mark[2] = {};
    std::string line;
    if (!in.read(mark, sizeof mark) || mark[0] != '#' || mark[1] != '!' ||
        !std::getline(in, line)) {
      return;
    }
    std::istringstream words(line);
    words >> interpreter_ >> std::ws;
    std::getline(words, argument_);
    argument_.erase(argument_.find_last_not_of(" \t\r") + 1);
  }

  bool isScriptRunBy(const std::string& process) const {
    if (interpreter_.empty()) {
      return false;
    }
    const std::vector<std::string> given = argumentsOf(process);
    std::vector<std::string> first = {interpreter_};
    if (!argument_.empty()) {
      first.push_back(argument_);
    }
    return beginsWith(given, first) || beginsWith(given, {argument_});
  }

  // True when `given` is `first` followed by this application's path.
  bool beginsWith(const std::vector<std::string>& given,
                  const std::vector<std::string>& first) const {
    struct stat script = {};
    return given.size() > first.size() && std::equal(first.begin(), first.end(), given.begin()) &&
           given[first.size()].compare(0, 1, "/") == 0 &&
           ::stat(given[first.size()].c_str(), &script) == 0 && isSameFile(script, status_);
  }

  std::string path_;
  struct stat status_ = {};
  const bool exists_;
  std::string interpreter_;  // empty: no script
  std::string argument_;
};

}  // namespace

int FindTaskByAppName(const char* path) {
  if (path == nullptr || *path == '\0') {
    return 0;
  }
  const Application application(host::hostPath(path));
  const std::unique_ptr<DIR, int (*)(DIR*)> processes(
      application.exists() ? ::opendir("/proc") : nullptr, ::closedir);
  while (const dirent* entry = processes ? ::readdir(processes.get()) : nullptr) {
    const int number = static_cast<int>(std::strtol(entry->d_name, nullptr, 10));
    if (number > 0 && application.isRunBy(std::string("/proc/") + entry->d_name)) {
      return number;
    }
  }
  return 0;
}
