#include "platform/host/ConfigText.h"

#include <cstring>

#include "base/VisibleText.h"

namespace host {
namespace {

const char kFirstLine[] = "# Settings of the device, one key=value per line.\n";
const char kSecretStart[] = "secret:";
const std::size_t kSecretStartLength = sizeof kSecretStart - 1;

bool isBlank(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\r';
}

struct Range {
  const char* begin;
  const char* end;
};

Range trimmed(Range range) {
  while (range.begin < range.end && isBlank(*range.begin)) {
    ++range.begin;
  }
  while (range.begin < range.end && isBlank(range.end[-1])) {
    --range.end;
  }
  return range;
}

int digitValue(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  if (digit >= 'a' && digit <= 'f') {
    return digit - 'a' + 10;
  }
  return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

// Reads the escape whose backslash `*at` points to, and moves `*at` behind it. Returns the byte, or
// NUL for an invalid escape.
char takeEscape(const char** at, const char* end) {
  const char kind = *at + 1 < end ? (*at)[1] : '\0';
  *at += 2;
  switch (kind) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case '\\':
      return '\\';
    case 'x': {
      const int high = *at < end ? digitValue((*at)[0]) : -1;
      const int low = *at + 1 < end ? digitValue((*at)[1]) : -1;
      *at += 2;
      return high < 0 || low < 0 ? '\0' : static_cast<char>(high * 16 + low);
    }
    default:
      return '\0';
  }
}

// False when the range contains an invalid escape or a NUL.
bool unescape(Range range, std::string* text) {
  const std::size_t length = static_cast<std::size_t>(range.end - range.begin);
  if (std::memchr(range.begin, '\0', length) != nullptr) {
    return false;
  }
  if (std::memchr(range.begin, '\\', length) == nullptr) {
    text->assign(range.begin, range.end);
    return true;
  }
  text->reserve(length);
  for (const char* at = range.begin; at < range.end;) {
    const char byte = *at == '\\' ? takeEscape(&at, range.end) : *at++;
    if (byte == '\0') {
      return false;
    }
    *text += byte;
  }
  return true;
}

// False when the line is damaged.
bool parseLine(Range line, ConfigEntries* entries) {
  line = trimmed(line);
  if (line.begin == line.end || *line.begin == '#') {
    return true;
  }
  const void* separator =
      std::memchr(line.begin, '=', static_cast<std::size_t>(line.end - line.begin));
  if (separator == nullptr) {
    return false;
  }
  const char* middle = static_cast<const char*>(separator);
  std::string key;
  if (!unescape(trimmed({line.begin, middle}), &key)) {
    return false;
  }
  Range range = trimmed({middle + 1, line.end});
  ConfigValue value;
  value.isSecret = static_cast<std::size_t>(range.end - range.begin) >= kSecretStartLength &&
                   std::memcmp(range.begin, kSecretStart, kSecretStartLength) == 0;
  if (value.isSecret) {
    range.begin += kSecretStartLength;
  }
  if (!unescape(range, &value.text)) {
    return false;
  }
  // Files are written in the order of the keys, so the entry nearly always goes to the end.
  entries->insert_or_assign(entries->end(), std::move(key), std::move(value));
  return true;
}

bool isEdge(std::size_t at, const std::string& text) {
  return at == 0 || at + 1 == text.size();
}

// Bytes that need no escape anywhere in keys and values.
bool isPlain(char byte) {
  return byte > ' ' && byte < '\x7f' && byte != '\\' && byte != '=' && byte != '#';
}

std::size_t plainEnd(const std::string& text, std::size_t at) {
  while (at < text.size() && isPlain(text[at])) {
    ++at;
  }
  return at;
}

// Appends `text` with escapes; `special` are further bytes to escape.
void appendEscaped(const std::string& text, const char* special, std::string* out) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = plainEnd(text, at);  // fast path: most texts are plain
    if (end > at) {
      out->append(text, at, end - at);
      at = end;
      continue;
    }
    const char byte = text[at];
    const std::size_t length = base::printableLength(text, at);
    if (byte == '\\') {
      *out += "\\\\";
      ++at;
    } else if (length == 0 || (byte == ' ' && isEdge(at, text)) ||
               std::strchr(special, byte) != nullptr) {
      base::appendEscape(byte, out);
      ++at;
    } else {
      out->append(text, at, length);
      at += length;
    }
  }
}

void appendValue(const ConfigValue& value, std::string* out) {
  if (value.isSecret) {
    *out += kSecretStart;
  } else if (value.text.compare(0, kSecretStartLength, kSecretStart) == 0) {
    base::appendEscape(value.text.front(), out);
    appendEscaped(value.text.substr(1), "", out);
    return;
  }
  appendEscaped(value.text, "", out);
}

}  // namespace

ParsedConfig parseConfig(const std::string& text) {
  ParsedConfig parsed;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t number = 1; at < end; ++number) {
    const void* lineFeed = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
    const char* const lineEnd = lineFeed == nullptr ? end : static_cast<const char*>(lineFeed);
    if (!parseLine({at, lineEnd}, &parsed.entries)) {
      parsed.damagedLines.push_back(number);
    }
    at = lineEnd + 1;
  }
  return parsed;
}

std::string formatConfig(const ConfigEntries& entries) {
  std::string text = kFirstLine;
  for (const auto& entry : entries) {
    appendEscaped(entry.first, "=#", &text);
    text += '=';
    appendValue(entry.second, &text);
    text += '\n';
  }
  return text;
}

}  // namespace host
