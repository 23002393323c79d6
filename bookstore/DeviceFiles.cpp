#include "bookstore/DeviceFiles.h"

#include <filesystem>
#include <system_error>

#include "bookstore/Failure.h"
#include "host/Settings.h"

namespace bookstore {

std::string storeListFile() {
  return host::hostPath("/mnt/ext1/system/state/cache/store_list.cfg");
}

std::string tokenFile() {
  return host::hostPath("/mnt/ext1/system/config/bookstore.cfg");
}

bool fileExists(const std::string& path) {
  std::error_code error;
  const bool exists = std::filesystem::exists(path, error);
  if (error) {
    throw Failure(kLocalFailure, "cannot look at " + path + ": " + error.message(),
                  "check the folders above it, or set ORVANE_ROOT to another one");
  }
  return exists;
}

}  // namespace bookstore
