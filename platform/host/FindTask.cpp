// Finds running tasks among the processes of this user, in /proc. A zombie process has no
// executable, so it is never found.
//
// An executable is identified by its file, not by its name. A script runs as its interpreter, and a
// program for another processor as its emulator. Such a process counts when it has the arguments
// that the system passes when the script or program is started as an executable. If two root
// folders share one file, the root folder in the process's environment decides.

#include <ov_sdk.h>

#include <dirent.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "base/Settings.h"

namespace {

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The NUL-terminated texts of a file in /proc.
std::vector<std::string> textsOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::string> texts;
  for (std::string text; std::getline(in, text, '\0');) {
    texts.push_back(text);
  }
  return texts;
}

// The arguments of a process. They are empty for an instant while a process executes another
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

// False when the process has another root folder. A process without a root folder, or with a
// relative path, counts as ours.
bool isOfThisRoot(const std::string& process) {
  const std::string start = std::string(base::settings::kRoot.name) + "=";
  for (const std::string& variable : textsOf(process + "/environ")) {
    if (variable.compare(0, start.size(), start) == 0 && variable[start.size()] == '/') {
      return withoutTrailingSlash(variable.substr(start.size())) == base::rootFolder();
    }
  }
  return true;
}

// The interpreters that the system has registered for other kinds of executables, such as emulators
// of other processors.
std::vector<std::string> registeredInterpreters() {
  std::vector<std::string> interpreters;
  std::error_code ignored;
  std::filesystem::directory_iterator kind("/proc/sys/fs/binfmt_misc", ignored);
  for (; kind != std::filesystem::directory_iterator(); kind.increment(ignored)) {
    std::ifstream in(kind->path());
    for (std::string word; in >> word;) {
      if (word == "interpreter" && in >> std::ws && std::getline(in, word)) {
        interpreters.push_back(word);
      }
    }
  }
  return interpreters;
}

class Application {
 public:
  explicit Application(const std::string& path)
      : path_(path), exists_(::stat(path.c_str(), &status_) == 0 && S_ISREG(status_.st_mode)) {
    if (exists_ && !readInterpreterLine()) {
      for (const std::string& interpreter : registeredInterpreters()) {
        starts_.push_back({interpreter});
      }
    }
  }

  bool exists() const { return exists_; }

  bool isRunBy(const std::string& process) const {
    struct stat folder = {};
    struct stat executable = {};
    return ::stat(process.c_str(), &folder) == 0 && folder.st_uid == ::geteuid() &&
           ::stat((process + "/exe").c_str(), &executable) == 0 &&
           (isSameFile(executable, status_) || isInterpretedBy(process)) && isOfThisRoot(process);
  }

 private:
  // Reads "#!interpreter argument". The argument is optional, and one text even with blanks. The
  // interpreter "env" executes the program that the argument names. False if this is not a script.
  bool readInterpreterLine() {
    std::ifstream in(path_, std::ios::binary);
    char mark[2] = {};
    std::string line;
    if (!in.read(mark, sizeof mark) || mark[0] != '#' || mark[1] != '!' ||
        !std::getline(in, line)) {
      return false;
    }
    std::istringstream words(line);
    std::string interpreter;
    std::string argument;
    words >> interpreter >> std::ws;
    std::getline(words, argument);
    argument.erase(argument.find_last_not_of(" \t\r") + 1);
    if (!argument.empty()) {
      starts_ = {{interpreter, argument}, {argument}};
    } else if (!interpreter.empty()) {
      starts_ = {{interpreter}};
    }
    return true;
  }

  bool isInterpretedBy(const std::string& process) const {
    if (starts_.empty()) {
      return false;
    }
    const std::vector<std::string> given = argumentsOf(process);
    return std::any_of(starts_.begin(), starts_.end(),
                       [&](const auto& start) { return beginsWith(given, start); });
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
  std::vector<std::vector<std::string>> starts_;  // the arguments that may precede the path
};

}  // namespace

int FindTaskByAppName(const char* path) {
  if (path == nullptr || *path == '\0') {
    return 0;
  }
  const Application application(base::hostPath(path));
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
