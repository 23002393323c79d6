// The settings of this machine: environment variables, read anew at each use, so that a
// program can set them before its first call. Safe to call from any thread that does not run
// alongside setenv().

#ifndef BASE_SETTINGS_H_
#define BASE_SETTINGS_H_

#include <string>
#include <vector>

namespace base {

// One setting: its environment variable, what holds while that is unset or empty, and what it does
// in one line.
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

// The text of a setting: the environment's, or the fallback.
std::string text(const Setting& setting);

// The whole number that a setting holds, at least `lowest` and at most `highest`. A text that is
// not such a number is reported once on standard error, and the fallback counts.
long long number(const Setting& setting, long long lowest, long long highest);

// The text of a setting that must be one of `allowed`. Another one is reported once on standard
// error, and the fallback counts.
std::string choice(const Setting& setting, const std::vector<std::string>& allowed);

// True when the setting is "1".
bool isOn(const Setting& setting);

// The folder below which all device paths live: the setting, else a folder in the person's XDG
// state directory. Absolute, without a slash at its end. The folder need not exist.
std::string rootFolder();

// Where the device path `path`, such as "/mnt/ext1/system", lives on this machine.
std::string hostPath(const std::string& path);

}  // namespace base

#endif  // BASE_SETTINGS_H_
