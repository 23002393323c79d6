// Environment variables that are set, or unset, until the end of a test.

#ifndef TESTS_SUPPORT_SCOPEDSETTING_H_
#define TESTS_SUPPORT_SCOPEDSETTING_H_

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace support {

// When destroyed, restores every variable that it changed.
class ScopedSettings {
 public:
  ScopedSettings() = default;
  ~ScopedSettings() {
    for (const auto& [name, value] : before_) {
      if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
      } else {
        ::unsetenv(name.c_str());
      }
    }
  }
  ScopedSettings(const ScopedSettings&) = delete;
  ScopedSettings& operator=(const ScopedSettings&) = delete;

  void set(const std::string& name, const std::string& value) {
    keep(name);
    ::setenv(name.c_str(), value.c_str(), 1);
  }

  void unset(const std::string& name) {
    keep(name);
    ::unsetenv(name.c_str());
  }

 private:
  void keep(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    before_.emplace(name, value == nullptr ? std::nullopt : std::make_optional<std::string>(value));
  }

  std::map<std::string, std::optional<std::string>> before_;
};

// One variable.
class ScopedSetting {
 public:
  ScopedSetting(const std::string& name, const std::string& value) { settings_.set(name, value); }

 private:
  ScopedSettings settings_;
};

}  // namespace support

#endif  // TESTS_SUPPORT_SCOPEDSETTING_H_
