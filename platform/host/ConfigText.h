// The text form of a configuration: one `key=value` per line, in UTF-8. Has no state; safe from any
// thread.
//
// Empty lines, lines that begin with '#', and blanks around key and value are ignored. \n, \r, \t,
// \\ and \xHH are escapes for one byte each (never NUL), so that any text without NUL is read back
// byte for byte. In a key, '=' is written \x3d.
//
// A value that begins with "secret:" is a sealed secret (see SecretBox.h). If a plain text begins
// so, its first letter is written \x73: a secret is never read as a text, nor a text as a secret.

#ifndef PLATFORM_HOST_CONFIGTEXT_H_
#define PLATFORM_HOST_CONFIGTEXT_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace host {

struct ConfigValue {
  std::string text;  // of a secret: the part after "secret:"
  bool isSecret = false;
};

using ConfigEntries = std::map<std::string, ConfigValue, std::less<>>;

struct ParsedConfig {
  ConfigEntries entries;                  // of several lines with the same key, the last counts
  std::vector<std::size_t> damagedLines;  // the numbers, from 1, of lines that cannot be parsed
};

ParsedConfig parseConfig(const std::string& text);

std::string formatConfig(const ConfigEntries& entries);

}  // namespace host

#endif  // PLATFORM_HOST_CONFIGTEXT_H_
