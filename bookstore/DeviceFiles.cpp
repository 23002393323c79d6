#include "bookstore/DeviceFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "bookstore/Failure.h"
#include "host/Settings.h"

namespace bookstore {

namespace {

Failure cannotLook(const std::string& path, const std::error_code& error) {
  return Failure(kLocalFailure, "cannot look at " + path + ": " + error.message(),
                 "check the folders above it, or set ORVANE_ROOT to another one");
}

}  // namespace

const char kTokenFileOnDevice[] = "/mnt/ext1/system/config/bookstore.cfg";

std::string storeListFile() {
  return host::hostPath("/mnt/ext1/system/state/cache/store_list.cfg");
}

std::string tokenFile() {
  return host::hostPath(kTokenFileOnDevice);
}

bool fileExists(const std::string& path) {
  std::error_code error;
  const bool exists = std::filesystem::exists(path, error);
  if (error) {
    throw cannotLook(path, error);
  }
  return exists;
}

std::chrono::seconds timeSinceChange(const std::string& path) {
  std::error_code error;
  const auto changed = std::filesystem::last_write_time(path, error);
  if (error) {
    throw cannotLook(path, error);
  }
  const auto since = std::filesystem::file_time_type::clock::now() - changed;
  return std::max(std::chrono::seconds(0), std::chrono::duration_cast<std::chrono::seconds>(since));
}

}  // namespace bookstore
