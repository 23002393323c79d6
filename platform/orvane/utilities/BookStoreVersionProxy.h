// Which generation of the book store the device uses, and where the customer's tokens stand in the
// token file. Safe to call from any thread.

#ifndef PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_
#define PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_

#include <string>

namespace orvane {
namespace utilities {

class BookStoreVersionProxy {
 public:
  // The store generation in use. The argument asks for a fresh look instead of a kept answer.
  static int storeVersion(bool refresh);

  // Keys of the token file. They are distinct, and the same in every release: the file outlives it.
  static std::string configKeyAccessToken();
  static std::string configKeyRefreshToken();
  static std::string configKeyExpirationToken();
  // Non-empty in the file when its tokens may be used at all.
  static std::string configKeySacAccessToken();
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_BOOKSTOREVERSIONPROXY_H_
