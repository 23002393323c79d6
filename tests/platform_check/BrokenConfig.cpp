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
#include <vector>

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

std::string asciiOf(const std::string& text) {
  std::string ascii = text;
  for (char& byte : ascii) {
    byte = static_cast<unsigned char>(byte) < 128 ? byte : '?';
  }
  return ascii;
}

std::string ofHex(const std::string& digits) {
  std::string result;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    result += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
  }
  return result;
}

// What a save has to write first, in "writes-wait-for-save".
struct Waiting {
  ov_config* config;
  std::string key;
  std::string text;
};
std::vector<Waiting>& waiting() {
  static std::vector<Waiting> all;
  return all;
}

// The texts that the caller still owns, in "text-not-copied".
std::map<std::string, const char*>& kept() {
  static std::map<std::string, const char*> texts;
  return texts;
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
  if (isFault("text-not-copied") && kept().count(key) != 0) {
    return kept()[key];
  }
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
  const auto write = real<decltype(&WriteInt)>(&WriteInt);
  write(config, key, isFault("integer-of-16-bits") ? static_cast<short>(value) : value);
}

void WriteString(ov_config* config, const char* key, const char* text) {
  std::string stored = text;
  if (isFault("text-cut-at-line-end")) {
    stored = stored.substr(0, stored.find('\n'));
  }
  if (isFault("text-cut-at-1000-bytes")) {
    stored = stored.substr(0, 1000);
  }
  if (isFault("text-not-copied")) {
    kept()[key] = text;
  }
  if (isFault("writes-wait-for-save")) {
    waiting().push_back({config, key, stored});
    return;
  }
  if (isFault("secret-stays-a-secret") && ReadSecret(config, key, nullptr) != nullptr) {
    WriteSecret(config, key, text);
    return;
  }
  const auto write = real<decltype(&WriteString)>(&WriteString);
  write(config, key, stored.c_str());
}

void WriteSecret(ov_config* config, const char* key, const char* text) {
  if (isFault("secret-in-clear-text")) {
    WriteString(config, key, text);
  } else if (isFault("secret-as-hexadecimal-digits")) {
    WriteString(config, key, hexOf(text).c_str());
  } else {
    const auto write = real<decltype(&WriteSecret)>(&WriteSecret);
    write(config, key, (isFault("secret-of-ascii-only") ? asciiOf(text) : text).c_str());
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
  const auto write = real<decltype(&WriteString)>(&WriteString);
  for (const Waiting& each : waiting()) {
    write(each.config, each.key.c_str(), each.text.c_str());
  }
  waiting().clear();
  if (isFault("save-waits-for-close")) {
    return;
  }
  real<Member> (&CfgWrapper::save)(this);
  if (isFault("save-closes")) {
    closeNoSave();
  }
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
