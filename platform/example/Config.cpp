// Configuration files, which are always replaced whole.

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "Firmware.h"

namespace firmware {

std::string realPath(const std::string& path) {
  const char* root = std::getenv("FIRMWARE_ROOT");
  return (root == nullptr ? "" : root) + path;
}

bool placeFile(const std::string& path, const std::string& content,
               int (*place)(const char* from, const char* to)) {
  std::error_code ignored;  // without the folder, creating the file fails, too
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  std::string temporary = path + ".XXXXXX";
  const int file = ::mkstemp(&temporary[0]);
  const bool isPlaced =
      file >= 0 &&
      ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
      ::fsync(file) == 0 && place(temporary.c_str(), path.c_str()) == 0;
  const int error = errno;
  ::close(file);
  ::unlink(temporary.c_str());
  errno = error;
  return isPlaced;
}

namespace {

// Escapes bytes that have a meaning in the file as "%hh".
std::string escaped(const std::string& text) {
  static const char digits[] = "0123456789abcdef";
  std::string result;
  for (const char byte : text) {
    if (std::strchr("%=!\n", byte) == nullptr) {
      result += byte;
    } else {
      result += {'%', digits[byte >> 4], digits[byte & 0xf]};
    }
  }
  return result;
}

std::string unescaped(const std::string& entry) {
  std::string result;
  for (std::size_t at = 0; at < entry.size(); ++at) {
    if (entry[at] == '%') {
      result += static_cast<char>(std::strtol(entry.substr(at + 1, 2).c_str(), nullptr, 16));
      at += 2;
    } else {
      result += entry[at];
    }
  }
  return result;
}

// The entry of `key` if it has the requested type, else null.
const std::string* find(const ov_config* config, const char* key, bool isSecret) {
  const auto found = config->entries.find(key);
  const bool fits = found != config->entries.end() && (found->second[0] == '!') == isSecret;
  return fits ? &found->second : nullptr;
}

}  // namespace

}  // namespace firmware

ov_config::ov_config(const std::string& devicePath) : path(firmware::realPath(devicePath)) {
  errno = 0;
  std::ifstream in(path);
  maySave = in.is_open() || errno == ENOENT;
  for (std::string line; std::getline(in, line);) {
    const std::size_t middle = line.find('=');
    if (middle != std::string::npos) {
      entries[firmware::unescaped(line.substr(0, middle))] = line.substr(middle + 1);
    }
  }
}

void ov_config::save() {
  std::string content;
  for (const auto& entry : entries) {
    content += firmware::escaped(entry.first) + "=" + entry.second + "\n";
  }
  errno = EACCES;
  if (!maySave || !firmware::placeFile(path, content, &::rename)) {
    ov_print_log2(2, __FILE__, __LINE__, __func__, "Cannot save %s, which is unchanged: %s",
                  path.c_str(), std::strerror(errno));
  }
}

int ReadInt(ov_config* config, const char* key, int default_value) {
  const std::string* entry = firmware::find(config, key, false);
  return entry == nullptr ? default_value : std::atoi(entry->c_str());
}

const char* ReadString(ov_config* config, const char* key, const char* default_value) {
  const std::string* entry = firmware::find(config, key, false);
  if (entry == nullptr) {
    return default_value;
  }
  config->returned = firmware::unescaped(*entry);
  return config->returned.c_str();
}

const char* ReadSecret(ov_config* config, const char* key, const char* default_value) {
  const std::string* entry = firmware::find(config, key, true);
  const bool isOpen = entry != nullptr && firmware::unseal(entry->substr(1), &config->returned);
  return isOpen ? config->returned.c_str() : default_value;
}

void WriteInt(ov_config* config, const char* key, int value) {
  config->entries[key] = std::to_string(value);
}

void WriteString(ov_config* config, const char* key, const char* text) {
  config->entries[key] = firmware::escaped(text);
}

void WriteSecret(ov_config* config, const char* key, const char* text) {
  std::string sealed;
  config->maySave = firmware::seal(text, &sealed) && config->maySave;  // never in clear text
  config->entries[key] = "!" + sealed;
}
