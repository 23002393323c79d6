#include "platform/host/RegistrationProof.h"

#include <string>

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "base/DevicePaths.h"
#include "platform/host/ConfigFile.h"
#include "platform/host/RandomText.h"

namespace host {
namespace {

const std::size_t kProofLength = 32;

}  // namespace

void provideRegistrationProof(ov_config* config) {
  const std::string key = orvane::utilities::BookStoreVersionProxy::configKeySacAccessToken();
  if (config->file.devicePath() == base::kTokenPath &&
      *ReadSecret(config, key.c_str(), "") == '\0') {
    WriteSecret(config, key.c_str(), randomText(kProofLength).c_str());
  }
}

}  // namespace host
