#include "base/Settings.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>

namespace base {

namespace settings {
const Setting kRoot = {"ORVANE_ROOT", "$XDG_STATE_HOME/orvane, else ~/.local/state/orvane",
                       "folder that contains all device paths"};
const Setting kCaFile = {"ORVANE_CA_FILE", "",
                         "file of CA certificates (PEM) to use instead of the system's"};
const Setting kPinnedKey = {"ORVANE_PINNED_KEY", "",
                            "public key that a server must have: sha256//BASE64[;sha256//BASE64]"};
const Setting kConnectTo = {"ORVANE_CONNECT_TO", "",
                            "where to connect instead: HOST:PORT:TO-HOST:TO-PORT[,...]; an empty "
                            "HOST or PORT matches any"};
const Setting kHttpVersion = {
    "ORVANE_HTTP_VERSION", "1.1",
    "HTTP version to request: 1.1 or 2; an open connection keeps its version"};
const Setting kMaxResponseBytes = {"ORVANE_MAX_ANSWER_BYTES", "16777216",
                                   "largest response body in bytes, after decompression"};
const Setting kConnectTimeoutSeconds = {"ORVANE_CONNECT_TIMEOUT", "10",
                                        "seconds to wait for a connection"};
const Setting kStallTimeoutSeconds = {"ORVANE_STALL_TIMEOUT", "30",
                                      "seconds without a byte after which a request without a time "
                                      "limit fails"};
const Setting kLogLevel = {"ORVANE_LOG_LEVEL", "2",
                           "highest level that is logged: 2 for failures, 5 for information"};
const Setting kLogTarget = {"ORVANE_LOG", "stderr",
                            "target of the log: stderr, syslog or the path of a file"};
const Setting kLogSecrets = {"ORVANE_LOG_SECRETS", "0",
                             "1 to show tokens and passwords in the log instead of masking them"};
const Setting kStoreVersion = {"ORVANE_STORE_VERSION", "3",
                               "generation of the book store that the device uses"};
}  // namespace settings

const std::vector<Setting>& allSettings() {
  static const std::vector<Setting> all = {
      settings::kRoot,
      settings::kCaFile,
      settings::kPinnedKey,
      settings::kConnectTo,
      settings::kHttpVersion,
      settings::kMaxResponseBytes,
      settings::kConnectTimeoutSeconds,
      settings::kStallTimeoutSeconds,
      settings::kLogLevel,
      settings::kLogTarget,
      settings::kLogSecrets,
      settings::kStoreVersion,
  };
  return all;
}

namespace {

// Parses all of `digits` as a number within the bounds.
bool parseNumber(const std::string& digits, long long lowest, long long highest,
                 long long* result) {
  char* end = nullptr;
  errno = 0;
  *result = std::strtoll(digits.c_str(), &end, 10);
  return errno == 0 && end != digits.c_str() && *end == '\0' && *result >= lowest &&
         *result <= highest;
}

// Settings are read at every request, so that each invalid value is reported only once. Another
// copy of this code in the process may report the value again.
void reportOnce(const Setting& setting, const std::string& value, const std::string& expected) {
  static std::mutex mutex;
  static std::set<std::string> reported;
  const std::lock_guard<std::mutex> guard(mutex);
  if (reported.insert(setting.name + ("=" + value)).second) {
    std::fprintf(stderr, "%s=%s is not %s; using %s\n", setting.name, value.c_str(),
                 expected.c_str(), setting.fallback);
  }
}

std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') {
    path.pop_back();
  }
  return path;
}

std::string absolutePath(const std::string& path) {
  if (path.empty() || path.front() == '/') {
    return path;
  }
  char* folder = ::getcwd(nullptr, 0);
  const std::string base = folder == nullptr ? std::string() : std::string(folder);
  std::free(folder);
  return base + "/" + path;
}

}  // namespace

std::string environmentText(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string text(const Setting& setting) {
  const std::string value = environmentText(setting.name);
  return value.empty() ? std::string(setting.fallback) : value;
}

long long number(const Setting& setting, long long lowest, long long highest) {
  const std::string value = text(setting);
  long long result = 0;
  if (!parseNumber(value, lowest, highest, &result)) {
    reportOnce(setting, value,
               "an integer from " + std::to_string(lowest) + " to " + std::to_string(highest));
    parseNumber(setting.fallback, lowest, highest, &result);
  }
  return result;
}

std::string choice(const Setting& setting, const std::vector<std::string>& allowed) {
  std::string value = text(setting);
  if (std::find(allowed.begin(), allowed.end(), value) != allowed.end()) {
    return value;
  }
  std::string expected;
  for (const std::string& each : allowed) {
    expected += (expected.empty() ? "one of: " : ", ") + each;
  }
  reportOnce(setting, value, expected);
  return setting.fallback;
}

bool isOn(const Setting& setting) {
  return text(setting) == "1";
}

std::string rootFolder() {
  const std::string root = environmentText(settings::kRoot.name);
  if (!root.empty()) {
    return withoutTrailingSlashes(absolutePath(root));
  }
  const std::string state = environmentText("XDG_STATE_HOME");
  if (!state.empty() && state.front() == '/') {
    return withoutTrailingSlashes(state) + "/orvane";
  }
  return withoutTrailingSlashes(environmentText("HOME")) + "/.local/state/orvane";
}

std::string hostPath(const std::string& path) {
  return rootFolder() + path;
}

}  // namespace base
