#include <ov_sdk.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/fake/FakeConfig.h"
#include "platform/fake/FakePlatform.h"

using fake::platform;

namespace {

// Returns the stored text, the default, or null if the call must fail. The text is valid until the
// next call only, because the device guarantees no more.
const char* readText(ov_config* config, const char* name, const char* key, const char* fallback,
                     bool secret) {
  if (platform().record(name, key)) {
    return nullptr;
  }
  const auto found = config->values.find(key);
  if (found == config->values.end()) {
    config->returned = fallback;
  } else {
    config->returned =
        (config->secretKeys.count(key) != 0) == secret ? found->second : fake::kWrongKind;
  }
  return config->returned.c_str();
}

void writeText(ov_config* config, const char* name, const char* key, const std::string& text,
               bool secret) {
  if (platform().record(name, std::string(key) + "=" + text)) {
    return;
  }
  config->values[key] = text;
  if (secret) {
    config->secretKeys.insert(key);
  } else {
    config->secretKeys.erase(key);
  }
}

const char* deviceText(const char* name, const char* text) {
  return platform().record(name) ? nullptr : text;
}

std::string formatted(const char* format, va_list values) {
  va_list again;
  va_copy(again, values);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::vsnprintf(&text[0], text.size(), format, values);
  text.pop_back();
  return text;
}

}  // namespace

extern "C" {

int ReadInt(ov_config* config, const char* key, int default_value) {
  if (platform().record("ReadInt", key)) {
    return default_value;
  }
  const auto found = config->values.find(key);
  return found == config->values.end() ? default_value : std::stoi(found->second);
}

const char* ReadString(ov_config* config, const char* key, const char* default_value) {
  return readText(config, "ReadString", key, default_value, false);
}

const char* ReadSecret(ov_config* config, const char* key, const char* default_value) {
  return readText(config, "ReadSecret", key, default_value, true);
}

void WriteInt(ov_config* config, const char* key, int value) {
  writeText(config, "WriteInt", key, std::to_string(value), false);
}

void WriteString(ov_config* config, const char* key, const char* text) {
  writeText(config, "WriteString", key, text, false);
}

void WriteSecret(ov_config* config, const char* key, const char* text) {
  writeText(config, "WriteSecret", key, text, true);
}

const char* GetDeviceModel(void) {
  return deviceText("GetDeviceModel", platform().device.model);
}

const char* GetSoftwareVersion(void) {
  return deviceText("GetSoftwareVersion", platform().device.softwareVersion);
}

const char* GetSerialNumber(void) {
  return deviceText("GetSerialNumber", platform().device.serialNumber);
}

int ScreenWidth(void) {
  return platform().record("ScreenWidth") ? -1 : platform().device.screenWidth;
}

int ScreenHeight(void) {
  return platform().record("ScreenHeight") ? -1 : platform().device.screenHeight;
}

int FindTaskByAppName(const char* path) {
  return platform().record("FindTaskByAppName", path) ? -1 : platform().tasks.running;
}

int NewTask(const char* path, char* const* arguments, const char* app_name, const char* name,
            const void* reserved, unsigned int flags) {
  if (platform().record("NewTask", path)) {
    return -1;
  }
  fake::Task task{path, {}, app_name, name, reserved, flags};
  for (char* const* argument = arguments; *argument != nullptr; ++argument) {
    task.arguments.emplace_back(*argument);
  }
  platform().tasks.started.push_back(task);
  if (platform().tasks.onStart) {
    platform().tasks.onStart();
  }
  return 100 + static_cast<int>(platform().tasks.started.size());
}

void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) {
  va_list values;
  va_start(values, format);
  const std::string text = formatted(format, values);
  va_end(values);
  platform().log.push_back({level, file, line, function, format, text});
  platform().record("log", std::to_string(level) + " " + text);
}

}  // extern "C"
