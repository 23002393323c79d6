// The classes of orvane::utilities, except the two for HTTP.

#include <cstdint>
#include <istream>
#include <ostream>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>
#include <orvane/utilities/SerializationUtils.h>
#include <orvane/utilities/Str.h>

#include "Firmware.h"

namespace orvane {
namespace utilities {

// --- CfgWrapper ----------------------------------------------------------------------------------

CfgWrapper::CfgWrapper(const std::string& path, OpenMode mode) : handle(new ov_config(path)) {
  handle->maySave = handle->maySave && mode == Write;
}

CfgWrapper::~CfgWrapper() {
  closeNoSave();
}

std::set<std::string> CfgWrapper::keys() const {
  std::set<std::string> names;
  for (const auto& entry : handle->entries) {
    names.insert(entry.first);
  }
  return names;
}

void CfgWrapper::save() {
  handle->save();
}

void CfgWrapper::saveAndClose() {
  save();
  closeNoSave();
}

void CfgWrapper::closeNoSave() {
  delete handle;
  handle = nullptr;
}

// --- BookStoreVersionProxy -----------------------------------------------------------------------

int BookStoreVersionProxy::storeVersion(bool) {
  return 3;  // the generation that the library supports
}

std::string BookStoreVersionProxy::configKeyAccessToken() {
  return "accessToken";
}

std::string BookStoreVersionProxy::configKeyRefreshToken() {
  return "refreshToken";
}

std::string BookStoreVersionProxy::configKeyExpirationToken() {
  return "tokenExpiration";
}

std::string BookStoreVersionProxy::configKeySacAccessToken() {
  return "deviceToken";
}

// --- SerializationUtils: four bytes of length, lowest first, and the text ------------------------

int SerializationUtils::SerializeString(std::string const& value, std::ostream& out) {
  const std::uint64_t length = value.size();
  if (length > UINT32_MAX) {
    return 1;
  }
  for (int shift = 0; shift < 32; shift += 8) {
    out.put(static_cast<char>(length >> shift & 0xff));
  }
  out.write(value.data(), static_cast<std::streamsize>(value.size()));
  return out ? 0 : 1;
}

int SerializationUtils::DeserializeString(std::istream& in, std::string* value) {
  std::uint32_t length = 0;
  std::string text;
  for (int shift = 0; shift < 32; shift += 8) {
    length |= static_cast<std::uint32_t>(in.get() & 0xff) << shift;
  }
  char byte = 0;  // byte by byte: a damaged length must not allocate memory
  while (in && text.size() < length && in.get(byte)) {
    text += byte;
  }
  if (!in) {
    in.setstate(std::ios::eofbit);  // otherwise the library would read on
    return 1;
  }
  *value = text;
  return 0;
}

// --- Str -----------------------------------------------------------------------------------------

const std::string Str::WHITESPACE = " \t\n\r\v\f";

std::string Str::trim(const std::string& text, const std::string& characters) {
  const std::size_t first = text.find_first_not_of(characters);
  return first == std::string::npos
             ? std::string()
             : text.substr(first, text.find_last_not_of(characters) - first + 1);
}

}  // namespace utilities
}  // namespace orvane
