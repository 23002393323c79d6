#include "bookstore/commands/DeviceFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <system_error>

#include "base/DevicePaths.h"
#include "base/Settings.h"
#include "bookstore/Failure.h"

namespace bookstore {

namespace {

Failure accessFailure(const std::string& path, int error) {
  return Failure(kLocalFailure,
                 "cannot access " + path + ": " + std::generic_category().message(error),
                 "Check the folders above it, or set ORVANE_ROOT to another folder");
}

// False when there is no such file. Not std::filesystem, which on 32-bit systems has no dates after
// 2038.
bool readStatus(const std::string& path, struct stat* status) {
  if (::stat(path.c_str(), status) == 0) {
    return true;
  }
  if (errno != ENOENT && errno != ENOTDIR) {
    throw accessFailure(path, errno);
  }
  return false;
}

}  // namespace

std::string storeListFile() {
  return base::hostPath(base::kStoreListPath);
}

std::string tokenFile() {
  return base::hostPath(base::kTokenPath);
}

bool fileExists(const std::string& path) {
  struct stat status = {};
  return readStatus(path, &status);
}

std::chrono::seconds timeSinceChange(const std::string& path) {
  struct stat status = {};
  if (!readStatus(path, &status)) {
    throw accessFailure(path, ENOENT);
  }
  return std::chrono::seconds(std::max<std::time_t>(0, std::time(nullptr) - status.st_mtime));
}

}  // namespace bookstore
