// Configuration files of the device: key and value pairs, opened for one load or one save. An
// object is used by one thread at a time; nothing guards a file against another process.

#ifndef PLATFORM_ORVANE_UTILITIES_CFGWRAPPER_H_
#define PLATFORM_ORVANE_UTILITIES_CFGWRAPPER_H_

#include <ov_sdk.h>

#include <set>
#include <string>

#include <boost/optional.hpp>

namespace orvane {
namespace utilities {

// A value that the configuration keeps as a secret; holds its clear text.
class CfgSecret {
 public:
  CfgSecret() = default;
  // Both conversions are implicit on purpose: a secret is read and written like a text.
  // NOLINTNEXTLINE(google-explicit-constructor)
  CfgSecret(const std::string& clearText) : text(clearText) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator const std::string&() const { return text; }

 private:
  std::string text;
};

class CfgWrapper {
 public:
  enum OpenMode { Read = 0, Write = 1 };

  // Opens the configuration file at the device path `path`. A missing file opens as an empty one.
  CfgWrapper(const std::string& path, OpenMode mode);
  // Releases what is still open, without saving.
  ~CfgWrapper();

  CfgWrapper(const CfgWrapper&) = delete;
  CfgWrapper& operator=(const CfgWrapper&) = delete;

  // Every key that the open file holds.
  std::set<std::string> keys() const;

  // The value of `key`, or nothing when the file does not hold the key; an empty value is a value.
  // T is int, std::string or CfgSecret. Enumerates the keys at every call.
  template <typename T>
  boost::optional<T> readIfExists(const std::string& key) const {
    if (keys().count(key) == 0) {
      return boost::none;
    }
    return Value<T>::read(handle, key.c_str());
  }

  // The value of `key`, or `defaultValue` when the file does not hold the key.
  template <typename T>
  T read(const std::string& key, const T& defaultValue) const {
    const boost::optional<T> value = readIfExists<T>(key);
    return value ? *value : defaultValue;
  }

  // Writes the file and keeps it open.
  void save();
  // Writes the file and closes it.
  void saveAndClose();
  // Closes the file without writing it.
  void closeNoSave();

  // The open configuration, for the value functions of the device SDK, which owns it.
  ov_config* handle;

 private:
  // How a value of type T is read. A null text of the SDK makes std::string throw.
  template <typename T>
  struct Value;
};

template <>
struct CfgWrapper::Value<int> {
  static int read(ov_config* config, const char* key) { return ReadInt(config, key, 0); }
};

template <>
struct CfgWrapper::Value<std::string> {
  static std::string read(ov_config* config, const char* key) {
    return std::string(ReadString(config, key, ""));
  }
};

template <>
struct CfgWrapper::Value<CfgSecret> {
  static CfgSecret read(ov_config* config, const char* key) {
    return CfgSecret(std::string(ReadSecret(config, key, "")));
  }
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_CFGWRAPPER_H_
