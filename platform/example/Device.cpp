// Identity, screen and log of the device.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "Firmware.h"

namespace firmware {

const std::string& deviceSetting(const std::string& name) {
  static const std::map<std::string, std::string> settings = [] {
    std::map<std::string, std::string> found = {
        {"model", "Example Reader"},
        {"softwareVersion", "1.0.0"},
        {"serialNumber", "none"},
        {"screenWidth", "1072"},
        {"screenHeight", "1448"},
        {"logLevel", "2"},  // level 5 shows passwords
        {"caFile", ""},
        {"connectTo", ""},  // for the local store service
    };
    ov_config config("/mnt/ext1/system/config/device.cfg");
    for (auto& setting : found) {
      setting.second = ReadString(&config, setting.first.c_str(), setting.second.c_str());
    }
    return found;
  }();
  return settings.at(name);
}

}  // namespace firmware

using firmware::deviceSetting;

const char* GetDeviceModel(void) {
  return deviceSetting("model").c_str();
}

const char* GetSoftwareVersion(void) {
  return deviceSetting("softwareVersion").c_str();
}

const char* GetSerialNumber(void) {
  return deviceSetting("serialNumber").c_str();
}

int ScreenWidth(void) {
  return std::atoi(deviceSetting("screenWidth").c_str());
}

int ScreenHeight(void) {
  return std::atoi(deviceSetting("screenHeight").c_str());
}

void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) {
  if (level > std::atoi(deviceSetting("logLevel").c_str())) {
    return;
  }
  va_list values;
  va_start(values, format);
  char* text = nullptr;
  const int length = ::vasprintf(&text, format, values);
  va_end(values);
  for (int i = 0; i < length; ++i) {
    text[i] = text[i] == '\n' || text[i] == '\r' ? ' ' : text[i];  // one line per call
  }
  if (length >= 0) {
    std::fprintf(stderr, "%d %s:%d %s: %s\n", level, file, line, function, text);
    std::free(text);
  }
}
