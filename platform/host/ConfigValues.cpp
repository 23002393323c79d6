// The device SDK's functions for the values of an open configuration. A null handle, as after
// closing, has no values.

#include <ov_sdk.h>

#include <charconv>
#include <cstring>
#include <string>

#include "base/Log.h"
#include "platform/host/ConfigFile.h"

namespace {

const host::ConfigValue* find(ov_config* config, const char* key) {
  return config == nullptr || key == nullptr ? nullptr : config->file.find(key);
}

// Logs that the value of `key` has another type than the requested one.
void reportKind(const ov_config* config, const char* key, const char* fault) {
  BASE_LOG_FAILURE("%s: %s %s; using the default", config->file.devicePath().c_str(), key, fault);
}

std::string orEmpty(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

bool mayWrite(const ov_config* config, const char* key) {
  if (config == nullptr) {
    BASE_LOG_FAILURE("%s was not written: open the configuration first", orEmpty(key).c_str());
    return false;
  }
  if (key == nullptr) {
    BASE_LOG_FAILURE("%s: a value was not written: its key is null",
                     config->file.devicePath().c_str());
    return false;
  }
  return true;
}

}  // namespace

int ReadInt(ov_config* config, const char* key, int default_value) {
  const host::ConfigValue* value = find(config, key);
  if (value == nullptr) {
    return default_value;
  }
  int number = 0;
  const char* const end = value->text.data() + value->text.size();
  const std::from_chars_result result = std::from_chars(value->text.data(), end, number);
  if (value->isSecret || result.ec != std::errc() || result.ptr != end) {
    reportKind(config, key, "is not an integer");
    return default_value;
  }
  return number;
}

const char* ReadString(ov_config* config, const char* key, const char* default_value) {
  const host::ConfigValue* value = find(config, key);
  if (value != nullptr && value->isSecret) {
    reportKind(config, key, "is a secret, not a text");
    return default_value;
  }
  return value == nullptr ? default_value : value->text.c_str();
}

const char* ReadSecret(ov_config* config, const char* key, const char* default_value) {
  const host::ConfigValue* value = find(config, key);
  if (value == nullptr) {
    return default_value;
  }
  if (!value->isSecret) {
    reportKind(config, key, "is a text, not a secret");
    return default_value;
  }
  const char* clearText = config->file.clearTextOf(key, *value);
  return clearText == nullptr ? default_value : clearText;
}

void WriteInt(ov_config* config, const char* key, int value) {
  if (mayWrite(config, key)) {
    config->file.write(key, std::to_string(value));
  }
}

void WriteString(ov_config* config, const char* key, const char* text) {
  if (mayWrite(config, key)) {
    config->file.write(key, orEmpty(text));
  }
}

void WriteSecret(ov_config* config, const char* key, const char* text) {
  if (mayWrite(config, key)) {
    config->file.writeSecret(key, orEmpty(text));
  }
}
