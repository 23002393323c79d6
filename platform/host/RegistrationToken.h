// The device's registration token in the token file. On the device the firmware's account service
// writes it, and the customer's tokens are valid only beside it. A development machine has no such
// service: every device counts as registered there, so that a sign-in survives a restart.

#ifndef PLATFORM_HOST_REGISTRATIONTOKEN_H_
#define PLATFORM_HOST_REGISTRATIONTOKEN_H_

#include <ov_sdk.h>

namespace host {

// Writes a random registration token, as a secret, when `config` is the token file and has none
// that can be read. Called before the file is saved; leaves other files unchanged.
void ensureRegistrationToken(ov_config* config);

}  // namespace host

#endif  // PLATFORM_HOST_REGISTRATIONTOKEN_H_
