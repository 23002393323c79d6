// Which generation of the book store the device uses, and the keys of the customer's tokens in the
// token file. An integrator implements the class in liborvane_utilities.so. All functions are
// static, may be called from any thread, return at once and do not throw.

#ifndef PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_
#define PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_

#include <string>

namespace orvane {
namespace utilities {

class BookStoreVersionProxy {
 public:
  // Returns the generation of the store that the device uses. `refresh` true looks again; false
  // may return the result of an earlier call. The browser functions of the library work only when
  // the result is 3; otherwise they return nothing and count the customer as signed out.
  static int storeVersion(bool refresh);

  // The functions below return keys of the token file, /mnt/ext1/system/config/bookstore.cfg. The
  // four keys are distinct and not empty. They stay the same in every release of the firmware:
  // with other keys, every customer is signed out by an update.
  //
  // Key of the access token, which is stored as a secret.
  static std::string configKeyAccessToken();
  // Key of the refresh token, which is stored as a secret.
  static std::string configKeyRefreshToken();
  // Key of the time at which the access token expires.
  static std::string configKeyExpirationToken();
  // Key of the device's own token, a secret. The firmware writes it when the device is registered;
  // the library never does. While its value is empty or missing, the library loads no tokens.
  static std::string configKeySacAccessToken();
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_
