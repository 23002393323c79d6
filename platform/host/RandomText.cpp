#include "platform/host/RandomText.h"

#include <stdexcept>

#include <sodium.h>

namespace host {

std::string randomText(std::size_t length) {
  static const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  if (::sodium_init() < 0) {
    throw std::runtime_error("cannot initialise libsodium");
  }
  std::string text;
  while (text.size() < length) {
    text += letters[::randombytes_uniform(sizeof letters - 1)];
  }
  return text;
}

}  // namespace host
