#include <orvane/utilities/SerializationUtils.h>

#include <algorithm>
#include <cstdint>
#include <istream>
#include <ostream>
#include <utility>

#include "platform/host/LengthPrefix.h"

namespace orvane {
namespace utilities {
namespace {

// Allocates memory only for bytes that are present: a damaged length must not ask for too much.
const std::size_t kPieceBytes = 65536;

bool readBytes(std::streambuf& in, char* bytes, std::size_t length) {
  const auto count = static_cast<std::streamsize>(length);
  return in.sgetn(bytes, count) == count;
}

bool writeBytes(std::streambuf& out, const char* bytes, std::size_t length) {
  const auto count = static_cast<std::streamsize>(length);
  return out.sputn(bytes, count) == count;
}

bool readString(std::streambuf& in, std::string* text) {
  host::LengthPrefix prefix;
  for (char& byte : prefix) {
    const int next = in.sbumpc();
    if (next == std::streambuf::traits_type::eof()) {
      return false;
    }
    byte = std::streambuf::traits_type::to_char_type(next);
  }
  const std::uint32_t length = host::decodeLength(prefix);
  if (std::int64_t{length} <= in.in_avail()) {
    text->resize(length);
    return readBytes(in, &(*text)[0], length);
  }
  std::string pieces;
  for (std::size_t missing = length; missing > 0;) {
    const std::size_t piece = std::min(missing, kPieceBytes);
    const std::size_t begin = pieces.size();
    pieces.resize(begin + piece);
    if (!readBytes(in, &pieces[begin], piece)) {
      return false;
    }
    missing -= piece;
  }
  *text = std::move(pieces);
  return true;
}

}  // namespace

int SerializationUtils::SerializeString(std::string const& value, std::ostream& out) {
  host::LengthPrefix prefix;
  if (!host::encodeLength(value.size(), &prefix)) {
    return -1;
  }
  if (!out || !writeBytes(*out.rdbuf(), prefix.data(), prefix.size()) ||
      !writeBytes(*out.rdbuf(), value.data(), value.size())) {
    out.setstate(std::ios::badbit);
    return -1;
  }
  return 0;
}

int SerializationUtils::DeserializeString(std::istream& in, std::string* value) {
  if (!in || !readString(*in.rdbuf(), value)) {
    in.setstate(std::ios::eofbit | std::ios::failbit);  // even if the stream had failed before
    return -1;
  }
  return 0;
}

}  // namespace utilities
}  // namespace orvane
