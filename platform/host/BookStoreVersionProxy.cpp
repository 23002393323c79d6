#include <orvane/utilities/BookStoreVersionProxy.h>

#include "base/Settings.h"

namespace orvane {
namespace utilities {

// The setting is read at each call, so there is nothing to refresh.
int BookStoreVersionProxy::storeVersion(bool) {
  return static_cast<int>(base::number(base::settings::kStoreVersion, 1, 99));
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
  return "sacAccessToken";
}

}  // namespace utilities
}  // namespace orvane
