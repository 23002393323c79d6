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

Failure cannotLook(const std::string& path, int error) {
  return Failure(kLocalFailure,
                 "cannot look at " + path + ": " + std::generic_category().message(error),
                 "check the folders above it, or set ORVANE_ROOT to another one");
}

// False when there is no such file. std::filesystem would do, but on 32-bit systems it knows no
// dates beyond 2038.
bool look(const std::string& path, struct stat* status) {
  if (::stat(path.c_str(), status) == 0) {
    return true;
  }
  if (errno != ENOENT && errno != ENOTDIR) {
    throw cannotLook(path, errno);
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
  return look(path, &status);
}

std::chrono::seconds timeSinceChange(const std::string& path) {
  struct stat status = {};
  if (!look(path, &status)) {
    throw cannotLook(path, ENOENT);
  }
  return std::chrono::seconds(std::max<std::time_t>(0, std::time(nullptr) - status.st_mtime));
}

}  // namespace bookstore
