// The text form of a configuration: one `key=value` per line, in UTF-8. Holds no state; safe from
// any thread.
//
// A line whose first character is '#', or that holds nothing, is left out. Blanks around key and
// value do not count. Within both, \n, \r, \t, \\ and \xHH stand for one byte each (never NUL), so
// that any text without NUL comes back byte for byte; in a key '=' is written \x3d.
//
// A value that begins with "secret:" is a sealed secret (see SecretBox.h). In a plain text with
// that beginning the first letter is written \x73, so that the two can never be taken for each
// other.

#ifndef PLATFORM_HOST_CONFIGTEXT_H_
#define PLATFORM_HOST_CONFIGTEXT_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace host {

struct ConfigValue {
  std::string text;  // of a secret: what follows "secret:"
  bool isSecret = false;
};

using ConfigEntries = std::map<std::string, ConfigValue, std::less<>>;

struct ParsedConfig {
  ConfigEntries entries;                  // of several lines with one key the last one counts
  std::vector<std::size_t> damagedLines;  // the numbers, from 1, of lines that could not be read
};

ParsedConfig parseConfig(const std::string& text);

std::string formatConfig(const ConfigEntries& entries);

}  // namespace host

#endif  // PLATFORM_HOST_CONFIGTEXT_H_
