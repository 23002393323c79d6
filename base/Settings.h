// The settings of this machine: environment variables, read at each use, so that a program can set
// them before its first call. Safe from any thread, except beside setenv().

#ifndef BASE_SETTINGS_H_
#define BASE_SETTINGS_H_

#include <string>
#include <vector>

namespace base {

// One setting: its environment variable, its value while that is unset or empty, and its meaning in
// one line.
struct Setting {
  const char* name;
  const char* fallback;
  const char* meaning;
};

namespace settings {
extern const Setting kRoot;
extern const Setting kCaFile;
extern const Setting kPinnedKey;
extern const Setting kConnectTo;
extern const Setting kHttpVersion;
extern const Setting kMaxResponseBytes;
extern const Setting kConnectTimeoutSeconds;
extern const Setting kStallTimeoutSeconds;
extern const Setting kLogLevel;
extern const Setting kLogTarget;
extern const Setting kLogSecrets;
extern const Setting kStoreVersion;
}  // namespace settings

// Every setting, in the order of the manual page.
const std::vector<Setting>& allSettings();

// The environment variable `name`; empty when it is not set.
std::string environmentText(const char* name);

// The value of a setting: the environment's, or the fallback.
std::string text(const Setting& setting);

// The value of a setting that must be an integer from `lowest` to `highest`. Reports any other text
// once on standard error, and returns the fallback.
long long number(const Setting& setting, long long lowest, long long highest);

// The value of a setting that must be one of `allowed`. Reports any other text once on standard
// error, and returns the fallback.
std::string choice(const Setting& setting, const std::vector<std::string>& allowed);

// True when the setting is "1".
bool isOn(const Setting& setting);

// The folder that contains all device paths: the setting, or else a folder in the user's XDG state
// directory. Absolute, without a slash at its end. The folder need not exist.
std::string rootFolder();

// The path on this machine of the device path `path`, such as "/mnt/ext1/system".
std::string hostPath(const std::string& path);

}  // namespace base

#endif  // BASE_SETTINGS_H_
