// Seals the secret values of configuration files with XChaCha20-Poly1305, under a random key that
// belongs to the root folder. Safe from any thread.

#ifndef PLATFORM_HOST_SECRETBOX_H_
#define PLATFORM_HOST_SECRETBOX_H_

#include <memory>
#include <string>

namespace host {

// Where the key lives: 32 random bytes, made once, read by their owner only.
extern const char kSecretKeyPath[];

// Overwrites what `text` holds, and empties it.
void wipe(std::string* text);

// One key, kept out of core dumps and swap space, and wiped at the end.
class SecretBox {
 public:
  // The box of the present root folder, read once per process unless the key file is exchanged.
  // Null, and logged, when the key file cannot be read or is not to be trusted: of the wrong size,
  // of another owner, or open to others.
  static std::shared_ptr<const SecretBox> open();
  // The same, but makes a key where there is none yet.
  static std::shared_ptr<const SecretBox> openOrMake();

  SecretBox(const SecretBox&) = delete;
  SecretBox& operator=(const SecretBox&) = delete;
  ~SecretBox();

  // "v1:" and the nonce, the sealed text and its tag in Base64 (the variant for URLs, unpadded).
  // The text opens again only for the same key of the same file, named by its device path.
  std::string seal(const std::string& clearText, const std::string& file,
                   const std::string& key) const;

  // Opens what seal() made. False, with `*clearText` empty, when it is anything else.
  bool unseal(const std::string& sealed, const std::string& file, const std::string& key,
              std::string* clearText) const;

 private:
  explicit SecretBox(std::string* key);  // takes the bytes over and wipes them
  static std::shared_ptr<const SecretBox> openAt(const std::string& path, bool mayMake);

  unsigned char* key_;
};

}  // namespace host

#endif  // PLATFORM_HOST_SECRETBOX_H_
