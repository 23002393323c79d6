// Functions that the files of this example share. Callable from any thread.

#ifndef PLATFORM_EXAMPLE_FIRMWARE_H_
#define PLATFORM_EXAMPLE_FIRMWARE_H_

#include <ov_sdk.h>

#include <map>
#include <string>

namespace firmware {

// The real path of the device path `path`: the same path, or a path below the folder in the
// environment variable FIRMWARE_ROOT, so that the firmware also runs on a development machine.
std::string realPath(const std::string& path);

// Puts a file of mode 0600 with this content at `path`, complete and synced to disk. If `path`
// exists, ::rename replaces it and ::link fails. False, with errno, on failure.
bool placeFile(const std::string& path, const std::string& content,
               int (*place)(const char* from, const char* to));

// Encrypts `clearText` as a text. False when this device has no key.
bool seal(const std::string& clearText, std::string* sealed);
// False when `sealed` was changed or comes from another device.
bool unseal(const std::string& sealed, std::string* clearText);

// A setting of the device (Device.cpp lists them). The settings are read at the first call.
const std::string& deviceSetting(const std::string& name);

}  // namespace firmware

// An open configuration: a file of "key=value" lines, read when it is opened.
struct ov_config {
  explicit ov_config(const std::string& path);
  void save();  // failures are logged

  const std::string path;
  std::map<std::string, std::string>
      entries;           // as in the file: escaped; a secret is "!" and its encrypted text
  bool maySave;          // the file was readable, and every secret sealed
  std::string returned;  // the last text that an SDK function returned; valid until the next call
};

#endif  // PLATFORM_EXAMPLE_FIRMWARE_H_
