// The root folder of the device paths, a new one for each test.

#ifndef TESTS_SUPPORT_TEMPORARYROOT_H_
#define TESTS_SUPPORT_TEMPORARYROOT_H_

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/ScopedSetting.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

// The year 2050, in seconds since 1970: more than 31 bits.
constexpr std::time_t kBeyond2038 = 2524608000;

// The root folder of the device paths, and a log file beside it.
class TemporaryRoot {
 public:
  // The real path of the device path `path`.
  std::string at(const std::string& path) const { return root_ + path; }
  const std::string& path() const { return root_; }

  // What was logged since the object was made.
  std::string log() const { return contentOfFile(logFile_); }
  void clearLog() const { std::filesystem::remove(logFile_); }

  std::string contentOf(const std::string& path) const { return contentOfFile(at(path)); }

  void put(const std::string& path, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(at(path)).parent_path());
    std::ofstream(at(path), std::ios::binary) << content;
    ::chmod(at(path).c_str(), 0600);
  }

  // Sets the modification time of a file, in seconds since 1970.
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
  TemporaryFolder folder_;
  std::string root_ = folder_.path() + "/root";
  std::string logFile_ = folder_.path() + "/log";
  ScopedSetting rootSetting_{"ORVANE_ROOT", root_};
  ScopedSetting logSetting_{"ORVANE_LOG", logFile_};
};

}  // namespace support

#endif  // TESTS_SUPPORT_TEMPORARYROOT_H_
