// The length in front of a serialised string: four bytes, little-endian on every machine.

#ifndef PLATFORM_HOST_LENGTHPREFIX_H_
#define PLATFORM_HOST_LENGTHPREFIX_H_

#include <array>
#include <cstdint>

namespace host {

using LengthPrefix = std::array<char, 4>;

// False, with `*prefix` unchanged, for a length that does not fit into four bytes.
inline bool encodeLength(std::uint64_t length, LengthPrefix* prefix) {
  if (length > UINT32_MAX) {
    return false;
  }
  for (char& byte : *prefix) {
    byte = static_cast<char>(length & 0xff);
    length >>= 8;
  }
  return true;
}

inline std::uint32_t decodeLength(const LengthPrefix& prefix) {
  std::uint32_t length = 0;
  for (auto byte = prefix.rbegin(); byte != prefix.rend(); ++byte) {
    length = length << 8 | static_cast<unsigned char>(*byte);
  }
  return length;
}

}  // namespace host

#endif  // PLATFORM_HOST_LENGTHPREFIX_H_
