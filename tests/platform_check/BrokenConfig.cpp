// Faults of configuration files.

#include <ov_sdk.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

#include <orvane/utilities/CfgWrapper.h>

#include "tests/platform_check/Fault.h"

using broken::isFault;
using broken::real;
using orvane::utilities::CfgWrapper;

namespace {

std::string rootedPath(const std::string& path) {
  const char* root = std::getenv("FIRMWARE_ROOT");
  return (root == nullptr ? "" : root) + path;
}

// The real file of each open configuration.
std::map<const CfgWrapper*, std::string>& openFiles() {
  static std::map<const CfgWrapper*, std::string> files;
  return files;
}

std::string hexOf(const std::string& text) {
  std::string result;
  for (const char byte : text) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
    result += digits;
  }
  return result;
}

std::string ofHex(const std::string& digits) {
  std::string result;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    result += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
  }
  return result;
}

}  // namespace

// --- Values --------------------------------------------------------------------------------------

int ReadInt(ov_config* config, const char* key, int default_value) {
  return real<decltype(&ReadInt)>(&ReadInt)(config, key,
                                            isFault("default-not-returned") ? 0 : default_value);
}

const char* ReadString(ov_config* config, const char* key, const char* default_value) {
  static std::string shared;
  const auto read = real<decltype(&ReadString)>(&ReadString);
  const char* text = read(config, key, default_value);
  if (isFault("empty-text-is-null") && *text == '\0') {
    return nullptr;
  }
  if (isFault("default-not-returned") && text == default_value) {
    return "";
  }
  if (isFault("absent-key-created") && text == default_value) {
    WriteString(config, key, default_value);
  }
  if (isFault("one-buffer-for-all-texts")) {
    shared = text;
    shared.reserve(4096);
    return shared.c_str();
  }
  return text;
}

const char* ReadSecret(ov_config* config, const char* key, const char* default_value) {
  static std::string clearText;
  if (isFault("secret-in-clear-text")) {
    return ReadString(config, key, default_value);
  }
  if (isFault("secret-as-hexadecimal-digits")) {
    clearText = ofHex(ReadString(config, key, hexOf(default_value).c_str()));
    return clearText.c_str();
  }
  return real<decltype(&ReadSecret)>(&ReadSecret)(config, key, default_value);
}

void WriteInt(ov_config* config, const char* key, int value) {
  real<decltype(&WriteInt)> (&WriteInt)(
      config, key, isFault("integer-of-16-bits") ? static_cast<short>(value) : value);
}

void WriteString(ov_config* config, const char* key, const char* text) {
  std::string stored = text;
  if (isFault("text-cut-at-line-end")) {
    stored = stored.substr(0, stored.find('\n'));
  }
  if (isFault("text-cut-at-1000-bytes")) {
    stored = stored.substr(0, 1000);
  }
  real<decltype(&WriteString)> (&WriteString)(config, key, stored.c_str());
}

void WriteSecret(ov_config* config, const char* key, const char* text) {
  if (isFault("secret-in-clear-text")) {
    WriteString(config, key, text);
  } else if (isFault("secret-as-hexadecimal-digits")) {
    WriteString(config, key, hexOf(text).c_str());
  } else {
    real<decltype(&WriteSecret)> (&WriteSecret)(config, key, text);
  }
}

// --- Opening, saving and closing -----------------------------------------------------------------

// A constructor has no address; the name is that of every compiler for Linux.
CfgWrapper::CfgWrapper(const std::string& path, OpenMode mode) : handle(nullptr) {
  using Construct = void (*)(CfgWrapper*, const std::string&, OpenMode);
  static const auto construct = broken::realSymbol<Construct>(
      "_ZN6orvane9utilities10CfgWrapperC1ERKNSt7__cxx1112basic_stringIcSt11char_"
      "traitsIcESaIcEEENS1_"
      "8OpenModeE");
  const std::string file = rootedPath(path);
  openFiles()[this] = file;
  if (isFault("missing-file-created")) {
    std::ofstream(file, std::ios::app).flush();
  }
  const bool forgets = isFault("keys-of-others-lost") && mode == Write &&
                       std::rename(file.c_str(), (file + ".aside").c_str()) == 0;
  construct(this, path, isFault("read-mode-saves") ? Write : mode);
  if (forgets) {
    std::rename((file + ".aside").c_str(), file.c_str());
  }
}

std::set<std::string> CfgWrapper::keys() const {
  using Keys = std::set<std::string> (*)(const CfgWrapper*);
  std::set<std::string> all = real<Keys>(&CfgWrapper::keys)(this);
  if (isFault("secrets-are-not-listed")) {
    all.erase("secret");
  }
  return all;
}

namespace {

using Member = void (*)(CfgWrapper*);

}  // namespace

void CfgWrapper::save() {
  if (isFault("save-waits-for-close")) {
    return;
  }
  real<Member> (&CfgWrapper::save)(this);
  if (isFault("failed-save-throws") && std::filesystem::is_directory(openFiles()[this])) {
    throw std::runtime_error("cannot save");
  }
}

void CfgWrapper::saveAndClose() {
  if (isFault("save-waits-for-close")) {
    real<Member> (&CfgWrapper::save)(this);
    closeNoSave();
  } else {
    real<Member> (&CfgWrapper::saveAndClose)(this);
  }
}

void CfgWrapper::closeNoSave() {
  if (isFault("close-saves") && handle != nullptr) {
    real<Member> (&CfgWrapper::save)(this);
  }
  real<Member> (&CfgWrapper::closeNoSave)(this);
}

// In place of a rename, writes into the file itself, as slowly as flash memory does.
extern "C" int rename(const char* from, const char* to) noexcept {
  using Rename = int (*)(const char*, const char*);
  static const auto realRename = broken::realSymbol<Rename>("rename");
  if (!isFault("save-in-place")) {
    return realRename(from, to);
  }
  std::ifstream in(from, std::ios::binary);
  const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::ofstream out(to, std::ios::binary | std::ios::trunc);
  out << content.substr(0, content.size() / 2) << std::flush;
  ::usleep(2000);
  out << content.substr(content.size() / 2);
  return 0;
}
