// Encrypts secrets with a key of this device. Replace seal() and unseal() with your key store.

#include <sodium.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "Firmware.h"

namespace firmware {

namespace {

const char kKeyPath[] = "/mnt/secure/firmware.key";

unsigned char* bytes(std::string& text) {
  return reinterpret_cast<unsigned char*>(&text[0]);
}

std::string randomBytes(std::size_t count) {
  std::string random(count, '\0');
  randombytes_buf(&random[0], count);
  return random;
}

bool readKey(std::string* key) {
  std::ifstream in(realPath(kKeyPath), std::ios::binary);
  key->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return sodium_init() >= 0 && key->size() == crypto_secretbox_KEYBYTES;
}

// If two programs create the key at once, the first one's key is used by both.
bool readOrMakeKey(std::string* key) {
  return readKey(key) ||
         ((placeFile(realPath(kKeyPath), randomBytes(crypto_secretbox_KEYBYTES), &::link) ||
           errno == EEXIST) &&
          readKey(key));
}

}  // namespace

bool seal(const std::string& clearText, std::string* sealed) {
  std::string key;
  if (!readOrMakeKey(&key)) {
    ov_print_log2(2, __FILE__, __LINE__, __func__, "Cannot use the key in %s: %s", kKeyPath,
                  std::strerror(errno));
    return false;
  }
  std::string text = clearText;
  std::string nonce = randomBytes(crypto_secretbox_NONCEBYTES);
  std::string box(text.size() + crypto_secretbox_MACBYTES, '\0');
  crypto_secretbox_easy(bytes(box), bytes(text), text.size(), bytes(nonce), bytes(key));
  box.insert(0, nonce);
  sealed->resize(2 * box.size() + 1);  // hexadecimal digits and a NUL
  sodium_bin2hex(&(*sealed)[0], sealed->size(), bytes(box), box.size());
  sealed->pop_back();
  return true;
}

bool unseal(const std::string& sealed, std::string* clearText) {
  const std::size_t least = crypto_secretbox_NONCEBYTES + crypto_secretbox_MACBYTES;
  std::string key;
  std::string box(sealed.size() / 2, '\0');
  if (!readKey(&key) || box.size() < least ||
      sodium_hex2bin(bytes(box), box.size(), sealed.data(), sealed.size(), nullptr, nullptr,
                     nullptr) != 0) {
    return false;
  }
  clearText->resize(box.size() - least);
  return crypto_secretbox_open_easy(bytes(*clearText), bytes(box) + crypto_secretbox_NONCEBYTES,
                                    box.size() - crypto_secretbox_NONCEBYTES, bytes(box),
                                    bytes(key)) == 0;
}

}  // namespace firmware
