#include "platform_check/Check.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace platform_check {

std::vector<Check> allChecks() {
  std::vector<Check> all;
  for (const auto* group : {&kIdentityChecks, &kTextChecks, &kEncodingChecks, &kConfigChecks,
                            &kTaskChecks, &kLogChecks, &kHttpChecks}) {
    all.insert(all.end(), group->begin(), group->end());
  }
  return all;
}

void require(bool holds, const std::string& reason) {
  if (!holds) {
    throw Failure(reason);
  }
}

void requireEqual(const std::string& what, const std::string& actual, const std::string& expected) {
  require(actual == expected, what + " is " + quoted(actual) + ", expected " + quoted(expected));
}

void requireEqual(const std::string& what, long long actual, long long expected) {
  require(actual == expected,
          what + " is " + std::to_string(actual) + ", expected " + std::to_string(expected));
}

std::string quoted(const std::string& text) {
  const std::size_t kMostBytes = 60;
  static const char digits[] = "0123456789abcdef";
  std::string result = "'";
  for (const char byte : text.substr(0, kMostBytes)) {
    if (byte >= ' ' && byte <= '~' && byte != '\\') {
      result += byte;
    } else {
      result += {'\\', 'x', digits[byte >> 4 & 0xf], digits[byte & 0xf]};
    }
  }
  result += "'";
  return text.size() <= kMostBytes ? result
                                   : result + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string everyByteButNul() {
  std::string text;
  for (int byte = 1; byte < 256; ++byte) {
    text += static_cast<char>(byte);
  }
  return text;
}

std::string base64Of(const std::string& text) {
  static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  for (std::size_t at = 0; at < text.size(); at += 3) {
    unsigned int bits = 0;
    for (std::size_t i = at; i < at + 3; ++i) {
      bits = bits << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    for (int shift = 18; shift >= 0; shift -= 6) {
      result += digits[bits >> shift & 0x3f];
    }
  }
  const std::size_t padding = (3 - text.size() % 3) % 3;
  return result.replace(result.size() - padding, padding, std::string(padding, '='));
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  });
  return text;
}

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace platform_check
