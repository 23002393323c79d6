#include "sample_app/SamplePath.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/Settings.h"

namespace sample_app {

namespace {

namespace fs = std::filesystem;

SamplePath unusable(const std::string& problem) {
  return {"", problem};
}

bool containsDotDot(const fs::path& path) {
  return std::find(path.begin(), path.end(), fs::path("..")) != path.end();
}

bool isBelow(const fs::path& folder, const fs::path& root) {
  return std::mismatch(root.begin(), root.end(), folder.begin(), folder.end()).first == root.end();
}

}  // namespace

SamplePath locateSample(const std::string& devicePath) {
  const fs::path wanted(devicePath);
  const std::string name = wanted.filename().string();
  if (devicePath.compare(0, 1, "/") != 0 || devicePath.find('\0') != std::string::npos) {
    return unusable("the path of the sample file is not absolute");
  }
  if (containsDotDot(wanted)) {
    return unusable("the path of the sample file contains '..'");
  }
  if (name.empty() || name == ".") {
    return unusable("the path of the sample file names a folder");
  }
  std::error_code error;
  const fs::path root = fs::canonical(base::rootFolder(), error);
  const fs::path folder =
      error ? fs::path()
            : fs::canonical(base::hostPath(wanted.parent_path().string()) + "/.", error);
  if (error) {
    return unusable("the folder of the sample file cannot be used: " + error.message());
  }
  if (!isBelow(folder, root)) {
    return unusable("the folder of the sample file is outside the root folder");
  }
  return {(folder / name).string(), ""};
}

}  // namespace sample_app
