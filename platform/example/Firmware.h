// What the definitions of this example share. Functions are callable from any thread.

#ifndef PLATFORM_EXAMPLE_FIRMWARE_H_
#define PLATFORM_EXAMPLE_FIRMWARE_H_

#include <ov_sdk.h>

#include <map>
#include <string>

namespace firmware {

// Where the device path `path` lives: there, or below the folder that the environment variable
// FIRMWARE_ROOT names, so that the firmware also runs on a desk.
std::string realPath(const std::string& path);

// Puts a file of mode 0600 with this content at `path`, whole and on the disk: ::rename takes the
// place of a file that is there, ::link fails then. False, with errno, when it is not there.
bool placeFile(const std::string& path, const std::string& content,
               int (*place)(const char* from, const char* to));

// Makes `clearText` a text that shows nothing of it. False when this device has no key.
bool seal(const std::string& clearText, std::string* sealed);
// False when `sealed` was changed or comes from another device.
bool unseal(const std::string& sealed, std::string* clearText);

// A setting of the device (Device.cpp lists them), as it was at the first call of the process.
const std::string& deviceSetting(const std::string& name);

}  // namespace firmware

// An open configuration: a file of "key=value" lines, read at once.
struct ov_config {
  explicit ov_config(const std::string& path);
  void save();  // failures are logged

  const std::string path;
  std::map<std::string, std::string>
      entries;           // as in the file: escaped; a secret is "!" and sealed
  bool maySave;          // the file was readable, and every secret sealed
  std::string returned;  // what a function of the SDK gave, valid until the next call
};

#endif  // PLATFORM_EXAMPLE_FIRMWARE_H_
