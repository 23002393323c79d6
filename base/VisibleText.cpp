#include "base/VisibleText.h"

namespace base {
namespace {

// The length of the UTF-8 character that begins with `first`; 0 if none does.
std::size_t announcedLength(unsigned char first) {
  if (first < 0xc2 || first > 0xf4) {
    return 0;
  }
  return first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
}

// True for two bytes that do not begin a printable character: overlong forms, surrogates, values
// beyond U+10FFFF, and control characters.
bool isForbiddenPair(unsigned char first, unsigned char second) {
  const bool isTooLong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
  const bool isOutside = (first == 0xed && second > 0x9f) || (first == 0xf4 && second > 0x8f);
  const bool isControl = first == 0xc2 && second < 0xa0;
  return isTooLong || isOutside || isControl;
}

}  // namespace

std::size_t printableLength(const std::string& text, std::size_t position) {
  const auto byteAt = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char first = byteAt(position);
  if (first < 0x80) {
    return first >= 0x20 && first != 0x7f ? 1 : 0;
  }
  const std::size_t length = announcedLength(first);
  if (length == 0 || length > text.size() - position) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(position + i) & 0xc0) != 0x80) {
      return 0;
    }
  }
  return isForbiddenPair(first, byteAt(position + 1)) ? 0 : length;
}

void appendEscape(char byte, std::string* text) {
  switch (byte) {
    case '\n':
      *text += "\\n";
      return;
    case '\r':
      *text += "\\r";
      return;
    case '\t':
      *text += "\\t";
      return;
    default:
      static const char digits[] = "0123456789abcdef";
      const unsigned char value = static_cast<unsigned char>(byte);
      *text += {'\\', 'x', digits[value >> 4], digits[value & 0x0f]};
  }
}

std::string visibleText(const std::string& text) {
  std::string visible;
  visible.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = printableLength(text, at);
    if (length == 0) {
      appendEscape(text[at++], &visible);
    } else {
      visible.append(text, at, length);
      at += length;
    }
  }
  return visible;
}

}  // namespace base
