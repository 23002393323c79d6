#include "platform/host/SecretBox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <new>
#include <stdexcept>
#include <tuple>
#include <vector>

#include <sodium.h>

#include "base/Log.h"
#include "base/Settings.h"
#include "base/WholeFile.h"

namespace host {

const char kSecretKeyPath[] = "/mnt/secure/secret.key";

namespace {

constexpr std::size_t kKeySize = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr std::size_t kNonceSize = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t kTagSize = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr int kBase64 = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
const std::string kVersion = "v1:";

unsigned char* bytesOf(std::string& text) {
  return reinterpret_cast<unsigned char*>(&text[0]);
}

const unsigned char* bytesOf(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

void initSodium() {
  if (::sodium_init() < 0) {
    throw std::runtime_error("cannot initialise libsodium");
  }
}

// Paths and keys contain no NUL, so a NUL separates them without ambiguity.
std::string boundTo(const std::string& file, const std::string& key) {
  return file + '\0' + key;
}

// Identifies a file, to see whether a path still has the file that was read.
using FileMark = std::tuple<dev_t, ino_t, off_t, time_t, long, uid_t, mode_t>;

FileMark markOf(const struct stat& status) {
  return {status.st_dev,          status.st_ino, status.st_size, status.st_mtim.tv_sec,
          status.st_mtim.tv_nsec, status.st_uid, status.st_mode};
}

void makeKey(const std::string& path) {
  const base::FileLock lock(path);
  base::FileFailure failure = lock.failure();
  if (!failure) {
    std::string key(kKeySize, '\0');
    ::randombytes_buf(&key[0], key.size());
    failure = base::placeWholeFile(path, key, base::Placing::KeepExisting);
    wipe(&key);
  }
  if (failure) {
    BASE_LOG_FAILURE("Cannot create the key file %s: %s", path.c_str(), failure.text().c_str());
  }
}

// The fault of the key file, or null.
const char* faultOf(const struct stat& status) {
  if (!S_ISREG(status.st_mode)) {
    return "is not a regular file";
  }
  if (status.st_uid != ::geteuid()) {
    return "belongs to another user";
  }
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return "is accessible to other users (run chmod 600 if you still trust it)";
  }
  return status.st_size == static_cast<off_t>(kKeySize) ? nullptr : "is not 32 bytes long";
}

// Reads the key into `*key`, which stays empty on failure (logged).
void readKey(const std::string& path, std::string* key, FileMark* mark) {
  const base::Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
    const base::FileFailure failure = {"open", errno, false};
    BASE_LOG_FAILURE("Cannot read the key file %s, so secrets cannot be read or saved: %s",
                     path.c_str(), failure.text().c_str());
    return;
  }
  const char* fault = faultOf(status);
  std::string bytes(kKeySize, '\0');
  if (fault == nullptr &&
      ::read(file.get(), &bytes[0], kKeySize) != static_cast<ssize_t>(kKeySize)) {
    fault = "cannot be read completely";
  }
  if (fault != nullptr) {
    BASE_LOG_FAILURE(
        "The key file %s %s, so secrets cannot be read or saved. Fix it, or move it "
        "away to get a new key (all secrets are then lost)",
        path.c_str(), fault);
    return;
  }
  *mark = markOf(status);
  *key = std::move(bytes);
}

}  // namespace

void wipe(std::string* text) {
  ::sodium_memzero(&(*text)[0], text->size());
  text->clear();
}

SecretBox::SecretBox(std::string* key)
    : key_(static_cast<unsigned char*>(::sodium_malloc(kKeySize))) {
  if (key_ == nullptr) {
    throw std::bad_alloc();
  }
  key->copy(reinterpret_cast<char*>(key_), kKeySize);
  ::sodium_mprotect_readonly(key_);
  wipe(key);
}

SecretBox::~SecretBox() {
  ::sodium_free(key_);
}

std::shared_ptr<const SecretBox> SecretBox::open() {
  return openAt(base::hostPath(kSecretKeyPath), false);
}

std::shared_ptr<const SecretBox> SecretBox::openOrMake() {
  return openAt(base::hostPath(kSecretKeyPath), true);
}

std::shared_ptr<const SecretBox> SecretBox::openAt(const std::string& path, bool mayMake) {
  struct Known {
    FileMark mark;
    std::shared_ptr<const SecretBox> box;
  };
  static std::mutex mutex;
  static std::map<std::string, Known> known;
  const std::lock_guard<std::mutex> guard(mutex);
  struct stat status = {};
  const bool exists = ::lstat(path.c_str(), &status) == 0;
  const auto found = known.find(path);
  if (exists && found != known.end() && found->second.mark == markOf(status)) {
    return found->second.box;
  }
  initSodium();
  if (!exists && mayMake) {
    makeKey(path);
  }
  Known read;
  std::string key;
  readKey(path, &key, &read.mark);
  if (key.empty()) {
    return nullptr;
  }
  read.box.reset(new SecretBox(&key));
  known[path] = read;
  return read.box;
}

std::string SecretBox::seal(const std::string& clearText, const std::string& file,
                            const std::string& key) const {
  const std::string bound = boundTo(file, key);
  std::string sealed(kNonceSize + clearText.size() + kTagSize, '\0');
  ::randombytes_buf(&sealed[0], kNonceSize);
  ::crypto_aead_xchacha20poly1305_ietf_encrypt(bytesOf(sealed) + kNonceSize, nullptr,
                                               bytesOf(clearText), clearText.size(), bytesOf(bound),
                                               bound.size(), nullptr, bytesOf(sealed), key_);
  std::string text(sodium_base64_encoded_len(sealed.size(), kBase64), '\0');
  ::sodium_bin2base64(&text[0], text.size(), bytesOf(sealed), sealed.size(), kBase64);
  text.pop_back();  // the NUL
  return kVersion + text;
}

bool SecretBox::unseal(const std::string& sealed, const std::string& file, const std::string& key,
                       std::string* clearText) const {
  wipe(clearText);
  std::vector<unsigned char> bytes(sealed.size());
  std::size_t size = 0;
  if (sealed.compare(0, kVersion.size(), kVersion) != 0 ||
      ::sodium_base642bin(bytes.data(), bytes.size(), sealed.data() + kVersion.size(),
                          sealed.size() - kVersion.size(), nullptr, &size, nullptr, kBase64) != 0 ||
      size < kNonceSize + kTagSize) {
    return false;
  }
  const std::string bound = boundTo(file, key);
  clearText->resize(size - kNonceSize - kTagSize);
  if (::crypto_aead_xchacha20poly1305_ietf_decrypt(
          bytesOf(*clearText), nullptr, nullptr, bytes.data() + kNonceSize, size - kNonceSize,
          bytesOf(bound), bound.size(), bytes.data(), key_) != 0) {
    wipe(clearText);
    return false;
  }
  return true;
}

}  // namespace host
