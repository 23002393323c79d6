// Configuration files of the device: pairs of key and value. The library opens a file for one load
// or one save and closes it at once. An integrator implements the members without a body in
// liborvane_utilities.so; the format of the file is the implementation's own.
//
// Threads: an object belongs to one thread at a time; several threads may each have an object.
//
// Processes: the library locks nothing. Two processes can save one file at the same time;
// afterwards the file is whole and has the values of one of them or of both.

#ifndef PLATFORM_ORVANE_UTILITIES_CFGWRAPPER_H_
#define PLATFORM_ORVANE_UTILITIES_CFGWRAPPER_H_

#include <ov_sdk.h>

#include <set>
#include <string>

#include <boost/optional.hpp>

namespace orvane {
namespace utilities {

// The clear text of a value that the configuration keeps as a secret. CfgWrapper reads a value as
// a secret when its type is CfgSecret. An object owns a copy of the text.
class CfgSecret {
 public:
  // An empty text.
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
  // Read is for loading: the file is not created, and nothing is saved. Write is for saving:
  // values that the file already has are kept, so that keys of other programs survive.
  enum OpenMode { Read = 0, Write = 1 };

  // Opens the configuration file at the device path `path` and sets `handle`, which is not null. A
  // missing or unreadable file opens as an empty one; nothing tells the caller so. An exception
  // thrown here reaches the program that called the library.
  CfgWrapper(const std::string& path, OpenMode mode);
  // Frees what is still open and saves nothing. Runs after each of the three functions below, and
  // also without them when an exception ends a load or save early.
  ~CfgWrapper();

  CfgWrapper(const CfgWrapper&) = delete;
  CfgWrapper& operator=(const CfgWrapper&) = delete;

  // Returns every key of the open configuration, secrets and keys written since it was opened
  // included. Keys are compared byte for byte.
  std::set<std::string> keys() const;

  // Returns the value of `key`, or boost::none when there is no such key; an empty value is a
  // value. T is int, std::string or CfgSecret. A value of another kind reads as 0 or as an empty
  // text. Calls keys() each time. Throws std::logic_error when the SDK returns a null text.
  template <typename T>
  boost::optional<T> readIfExists(const std::string& key) const {
    if (keys().count(key) == 0) {
      return boost::none;
    }
    return Value<T>::read(handle, key.c_str());
  }

  // Like readIfExists(), with `defaultValue` as the result when there is no such key.
  template <typename T>
  T read(const std::string& key, const T& defaultValue) const {
    const boost::optional<T> value = readIfExists<T>(key);
    return value ? *value : defaultValue;
  }

  // Writes the file and keeps the configuration open, so that more values can be read, written and
  // saved. Waits until the file is written. The new file replaces the old one as a whole: a
  // process that is killed, or a power cut, leaves the old file or the new one, and a reader in
  // another process sees one of them. When the file cannot be written, the old file is unchanged,
  // the failure is logged at level 2, and the configuration stays open. Returns nothing and does
  // not throw: the library cannot tell whether the file was saved.
  void save();
  // Like save(), then closes the configuration, whether the file was saved or not.
  void saveAndClose();
  // Closes the configuration and leaves the file unchanged. The object is of no further use.
  void closeNoSave();

  // The open configuration, for ReadInt(), WriteInt() and the other value functions of the device
  // SDK. The object owns it. It is the first member: the library relies on that position.
  ov_config* handle;

 private:
  // How a value of type T is read.
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
