// The settings of this machine: environment variables, read at each use, so that a program can set
// them before its first call. Safe to call from any thread, but not at the same time as setenv().

#ifndef BASE_SETTINGS_H_
#define BASE_SETTINGS_H_

#include <string>
#include <vector>

namespace base {

// One setting: its environment variable, the default for an unset or empty variable, and a
// description in one line.
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
extern const Setting kMaxAnswerBytes;
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

// The text of a setting: from the environment, or the default.
std::string text(const Setting& setting);

// The value of a setting that must be an integer from `lowest` to `highest`. Any other text is
// reported once on standard error, and the default is used.
long long number(const Setting& setting, long long lowest, long long highest);

// The text of a setting that must be one of `allowed`. Any other text is reported once on standard
// error, and the default is used.
std::string choice(const Setting& setting, const std::vector<std::string>& allowed);

// True when the setting is "1".
bool isOn(const Setting& setting);

// The folder that contains all device paths: the setting, or a folder in the user's XDG state
// directory. Absolute, without a slash at the end. The folder need not exist.
std::string rootFolder();

// The path on this machine of the device path `path`, such as "/mnt/ext1/system".
std::string hostPath(const std::string& path);

}  // namespace base

#endif  // BASE_SETTINGS_H_
