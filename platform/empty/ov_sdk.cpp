// A device SDK that stores and allocates nothing, so that measurements count the library only.

#include <ov_sdk.h>

int ReadInt(ov_config*, const char*, int defaultValue) {
  return defaultValue;
}

const char* ReadString(ov_config*, const char*, const char* defaultValue) {
  return defaultValue;
}

const char* ReadSecret(ov_config*, const char*, const char* defaultValue) {
  return defaultValue;
}

void WriteInt(ov_config*, const char*, int) {}
void WriteString(ov_config*, const char*, const char*) {}
void WriteSecret(ov_config*, const char*, const char*) {}

const char* GetDeviceModel() {
  return "QX417";
}

const char* GetSoftwareVersion() {
  return "3.2.105";
}

const char* GetSerialNumber() {
  return "SN0001";
}

int ScreenWidth() {
  return 1200;
}

int ScreenHeight() {
  return 1600;
}

int FindTaskByAppName(const char*) {
  return 1;
}

int NewTask(const char*, char* const*, const char*, const char*, const void*, unsigned int) {
  return 1;
}

void ov_print_log2(int, const char*, int, const char*, const char*, ...) {}
