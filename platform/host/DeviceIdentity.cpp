// The identity of the device, from a small configuration file. It is read once per process, so that
// the returned texts stay valid. Missing values are added to the file at that time.

#include <ov_sdk.h>

#include <string>

#include "platform/host/ConfigFile.h"
#include "platform/host/RandomText.h"

namespace {

const char kDevicePath[] = "/mnt/ext1/system/config/device.cfg";
const std::size_t kSerialNumberLength = 16;

struct Default {
  const char* key;
  const char* text;
};

const Default kModel = {"model", "QX417"};
const Default kFirmware = {"firmware", "3.2.105"};
const Default kScreenWidth = {"screenWidth", "1200"};
const Default kScreenHeight = {"screenHeight", "1600"};
const char kSerialNumber[] = "serialNumber";

class Identity {
 public:
  Identity() : config_(kDevicePath, host::ConfigFile::Access::Write) {
    bool isComplete = config_.file.find(kSerialNumber) != nullptr;
    for (const Default& value : {kModel, kFirmware, kScreenWidth, kScreenHeight}) {
      isComplete = isComplete && config_.file.find(value.key) != nullptr;
      config_.file.writeIfMissing(value.key, value.text);
    }
    if (!isComplete) {
      config_.file.writeIfMissing(kSerialNumber, host::randomText(kSerialNumberLength));
      config_.file.save();
    }
    model = ReadString(&config_, kModel.key, kModel.text);
    firmware = ReadString(&config_, kFirmware.key, kFirmware.text);
    serialNumber = ReadString(&config_, kSerialNumber, "");
    screenWidth = pixels(kScreenWidth);
    screenHeight = pixels(kScreenHeight);
  }

  std::string model;
  std::string firmware;
  std::string serialNumber;
  int screenWidth;
  int screenHeight;

 private:
  int pixels(const Default& value) {
    const int fallback = std::stoi(value.text);
    const int number = ReadInt(&config_, value.key, fallback);
    return number > 0 ? number : fallback;
  }

  ov_config config_;
};

const Identity& identity() {
  static const Identity once;
  return once;
}

}  // namespace

const char* GetDeviceModel() {
  return identity().model.c_str();
}

const char* GetSoftwareVersion() {
  return identity().firmware.c_str();
}

const char* GetSerialNumber() {
  return identity().serialNumber.c_str();
}

int ScreenWidth() {
  return identity().screenWidth;
}

int ScreenHeight() {
  return identity().screenHeight;
}
