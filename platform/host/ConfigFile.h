// One open configuration file of the device. Only one thread at a time may use an object. Several
// objects, also in several processes, may have the same file open.

#ifndef PLATFORM_HOST_CONFIGFILE_H_
#define PLATFORM_HOST_CONFIGFILE_H_

#include <ov_sdk.h>

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/host/ConfigText.h"
#include "platform/host/SecretBox.h"

namespace host {

// The name of a configuration file to which its secrets are bound: absolute, without "." and "..".
std::string normalDevicePath(const std::string& path);

class ConfigFile {
 public:
  enum class Access { Read, Write };

  // Opens the file at the device path `path`, which need not exist. The file is read at the first
  // access, and again only when it is saved.
  ConfigFile(const std::string& path, Access access);
  ~ConfigFile();
  ConfigFile(const ConfigFile&) = delete;
  ConfigFile& operator=(const ConfigFile&) = delete;

  const std::string& devicePath() const { return devicePath_; }

  // All keys, from the file or written to this object. Valid until the next write or save.
  const std::set<std::string>& keys();

  // The value of `key`, written to this object or read from the file; null if there is none. Valid
  // until the next write or save.
  const ConfigValue* find(const std::string& key);

  // The clear text of a sealed value, owned by this object until the next call. Null if the value
  // cannot be decrypted (logged).
  const char* clearTextOf(const std::string& key, const ConfigValue& value);

  void write(const std::string& key, const std::string& text);
  // Like write(), but a save keeps the value of a key that is already in the file.
  void writeIfMissing(const std::string& key, const std::string& text);
  // Seals the text. If that fails (logged), the file will not be saved, because it would contain
  // only some of the new values.
  void writeSecret(const std::string& key, const std::string& clearText);

  // Replaces the file with its current content, whoever wrote it, and the keys written to this
  // object. Does not write if nothing would change. Returns false on failure (logged); the file is
  // then unchanged.
  bool save();

 private:
  const ConfigEntries& fileEntries();
  // Parses `content` and remembers it as the content of the file.
  void takeOver(std::string content);
  bool mayBeSaved() const;
  // Takes the lock, reads the current file, and replaces it unless nothing would change.
  bool updateFile();
  bool replaceFile();
  bool holdsAllWritten() const;
  bool keepDamagedFile() const;
  bool failed(const std::string& why) const;

  std::string devicePath_;
  std::string path_;
  Access access_;
  bool isLoaded_ = false;
  bool lacksSecret_ = false;
  std::string content_;  // the text that fromFile_ was parsed from
  ParsedConfig fromFile_;
  ConfigEntries written_;
  ConfigEntries missing_;  // from writeIfMissing()
  // Cached, because each read of a value through CfgWrapper gets all keys first.
  std::optional<std::set<std::string>> keys_;
  std::shared_ptr<const SecretBox> box_;
  std::string clearText_;
};

}  // namespace host

struct ov_config {
  ov_config(const std::string& path, host::ConfigFile::Access access) : file(path, access) {}
  host::ConfigFile file;
};

#endif  // PLATFORM_HOST_CONFIGFILE_H_
