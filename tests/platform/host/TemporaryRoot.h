// What the host's tests stand on: a root folder of their own, and settings that end with the test.

#ifndef TESTS_PLATFORM_HOST_TEMPORARYROOT_H_
#define TESTS_PLATFORM_HOST_TEMPORARYROOT_H_

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace host_tests {

// The year 2050, in seconds since 1970: more than 31 bits.
constexpr std::time_t kBeyond2038 = 2524608000;

// Sets an environment variable, and sets back what it was.
class ScopedSetting {
 public:
  ScopedSetting(const std::string& name, const std::string& value) : name_(name) {
    const char* before = std::getenv(name.c_str());
    wasSet_ = before != nullptr;
    before_ = wasSet_ ? before : "";
    ::setenv(name.c_str(), value.c_str(), 1);
  }
  ~ScopedSetting() {
    if (wasSet_) {
      ::setenv(name_.c_str(), before_.c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }
  ScopedSetting(const ScopedSetting&) = delete;
  ScopedSetting& operator=(const ScopedSetting&) = delete;

 private:
  std::string name_;
  std::string before_;
  bool wasSet_ = false;
};

// A new folder that goes, with all in it, when the object does.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "orvane-test-XXXXXX").string();
    if (::mkdtemp(&name[0]) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The root folder of the device paths, and a log file beside it.
class TemporaryRoot {
 public:
  // Where the device path `path` lives.
  std::string at(const std::string& path) const { return root_ + path; }
  const std::string& path() const { return root_; }

  // What was logged since the object was made.
  std::string log() const { return read(logFile_); }
  void clearLog() const { std::filesystem::remove(logFile_); }

  std::string contentOf(const std::string& path) const { return read(at(path)); }

  void put(const std::string& path, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(at(path)).parent_path());
    std::ofstream(at(path), std::ios::binary) << content;
    ::chmod(at(path).c_str(), 0600);
  }

  // Sets when a file was changed last, in seconds since 1970.
  void setDate(const std::string& path, std::time_t date) const {
    const struct timespec dates[] = {{date, 0}, {date, 0}};
    if (::utimensat(AT_FDCWD, at(path).c_str(), dates, 0) != 0) {
      throw std::runtime_error("no date for " + path);
    }
  }

  // The names in a folder, sorted.
  std::vector<std::string> namesIn(const std::string& path) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(at(path))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  unsigned int modeOf(const std::string& path) const {
    struct stat status = {};
    return ::stat(at(path).c_str(), &status) == 0 ? status.st_mode & 07777u : 0;
  }

 private:
  static std::string read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  TemporaryFolder folder_;
  std::string root_ = folder_.path() + "/root";
  std::string logFile_ = folder_.path() + "/log";
  ScopedSetting rootSetting_{"ORVANE_ROOT", root_};
  ScopedSetting logSetting_{"ORVANE_LOG", logFile_};
};

}  // namespace host_tests

#endif  // TESTS_PLATFORM_HOST_TEMPORARYROOT_H_
