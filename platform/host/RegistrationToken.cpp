#include "platform/host/RegistrationToken.h"

#include <string>

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "base/DevicePaths.h"
#include "platform/host/ConfigFile.h"
#include "platform/host/RandomText.h"

namespace host {
namespace {

const std::size_t kTokenLength = 32;

}  // namespace

void ensureRegistrationToken(ov_config* config) {
  const std::string key = orvane::utilities::BookStoreVersionProxy::configKeySacAccessToken();
  if (config->file.devicePath() == base::kTokenPath &&
      *ReadSecret(config, key.c_str(), "") == '\0') {
    WriteSecret(config, key.c_str(), randomText(kTokenLength).c_str());
  }
}

}  // namespace host
