#include <orvane/utilities/SerializationUtils.h>

#include <algorithm>
#include <istream>
#include <ostream>

#include "host/LengthPrefix.h"

namespace orvane {
namespace utilities {
namespace {

// A length is only believed as far as the bytes behind it are there.
const std::size_t kPieceBytes = 65536;

bool readBytes(std::istream& in, char* bytes, std::size_t length) {
  in.read(bytes, static_cast<std::streamsize>(length));
  return in.gcount() == static_cast<std::streamsize>(length);
}

bool readString(std::istream& in, std::string* text) {
  host::LengthPrefix prefix;
  if (!readBytes(in, prefix.data(), prefix.size())) {
    return false;
  }
  for (std::size_t missing = host::decodeLength(prefix); missing > 0;) {
    const std::size_t piece = std::min(missing, kPieceBytes);
    const std::size_t begin = text->size();
    text->resize(begin + piece);
    if (!readBytes(in, &(*text)[begin], piece)) {
      return false;
    }
    missing -= piece;
  }
  return true;
}

}  // namespace

int SerializationUtils::SerializeString(std::string const& value, std::ostream& out) {
  host::LengthPrefix prefix;
  if (!host::encodeLength(value.size(), &prefix)) {
    return -1;
  }
  out.write(prefix.data(), static_cast<std::streamsize>(prefix.size()));
  out.write(value.data(), static_cast<std::streamsize>(value.size()));
  return out ? 0 : -1;
}

int SerializationUtils::DeserializeString(std::istream& in, std::string* value) {
  std::string text;
  if (!readString(in, &text)) {
    in.setstate(std::ios::eofbit | std::ios::failbit);  // also where the stream had failed before
    return -1;
  }
  *value = std::move(text);
  return 0;
}

}  // namespace utilities
}  // namespace orvane
