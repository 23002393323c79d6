// One open configuration file of the device. An object is used by one thread at a time; any number
// of objects, in any number of processes, may have the same file open.

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

// Names a configuration file as secrets are bound to it: absolute, without "." and "..".
std::string normalDevicePath(const std::string& path);

class ConfigFile {
 public:
  enum class Access { Read, Write };

  // Opens the file at the device path `path`, which need not exist. It is read at the first look
  // into it, and then no more until it is saved.
  ConfigFile(const std::string& path, Access access);
  ~ConfigFile();
  ConfigFile(const ConfigFile&) = delete;
  ConfigFile& operator=(const ConfigFile&) = delete;

  const std::string& devicePath() const { return devicePath_; }

  // All keys, in the file or written here. Valid until the next write or save.
  const std::set<std::string>& keys();

  // The value of `key`, written here or found in the file; null when there is none. Valid until the
  // next write or save.
  const ConfigValue* find(const std::string& key);

  // The clear text of a sealed value, owned by this object until the next call; null, and logged,
  // when it cannot be opened.
  const char* clearTextOf(const std::string& key, const ConfigValue& value);

  void write(const std::string& key, const std::string& text);
  // The same, unless the file holds the key at the time it is saved.
  void writeIfMissing(const std::string& key, const std::string& text);
  // Seals the text. Where that is not possible (logged) the file will not be saved: it would hold
  // some of its new values without the others.
  void writeSecret(const std::string& key, const std::string& clearText);

  // Replaces the file: what it holds now, whoever wrote it, and over it the keys written here. A
  // file that holds all of that already is left alone. On failure, which is logged, the file stays
  // as it is. Returns whether it was saved.
  bool save();

 private:
  const ConfigEntries& fileEntries();
  // Makes this the content of the file that is known here.
  void takeOver(std::string content);
  bool mayBeSaved() const;
  // Takes the lock, reads what is there now, and replaces it unless nothing would change.
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
  std::string content_;  // what fromFile_ was read from
  ParsedConfig fromFile_;
  ConfigEntries written_;
  ConfigEntries missing_;  // counts where nothing else does
  // Each read of a value with CfgWrapper asks for all keys first.
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
