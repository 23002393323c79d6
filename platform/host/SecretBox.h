// Seals the secret values of configuration files with XChaCha20-Poly1305, under a random key that
// belongs to the root folder. Safe from any thread.

#ifndef PLATFORM_HOST_SECRETBOX_H_
#define PLATFORM_HOST_SECRETBOX_H_

#include <memory>
#include <string>

namespace host {

// Device path of the key file: 32 random bytes, created once, readable by the owner only.
extern const char kSecretKeyPath[];

// Overwrites the content of `text`, and empties it.
void wipe(std::string* text);

// Owns the key; keeps it out of core dumps and swap space, and wipes it in the destructor.
class SecretBox {
 public:
  // The box of the current root folder. Its key is read once per process, and again when the key
  // file is replaced. Null (logged) when the key file cannot be read or trusted: wrong size,
  // another owner, or accessible to other users.
  static std::shared_ptr<const SecretBox> open();
  // Like open(), but creates a missing key file.
  static std::shared_ptr<const SecretBox> openOrMake();

  SecretBox(const SecretBox&) = delete;
  SecretBox& operator=(const SecretBox&) = delete;
  ~SecretBox();

  // Returns "v1:" followed by nonce, encrypted text and tag in URL-safe Base64 without padding.
  // unseal() succeeds only for the same key of the same file, named by its device path.
  std::string seal(const std::string& clearText, const std::string& file,
                   const std::string& key) const;

  // Decrypts a text that seal() made. False, with `*clearText` empty, for any other text.
  bool unseal(const std::string& sealed, const std::string& file, const std::string& key,
              std::string* clearText) const;

 private:
  explicit SecretBox(std::string* key);  // copies the key and wipes `*key`
  static std::shared_ptr<const SecretBox> openAt(const std::string& path, bool mayMake);

  unsigned char* key_;
};

}  // namespace host

#endif  // PLATFORM_HOST_SECRETBOX_H_
