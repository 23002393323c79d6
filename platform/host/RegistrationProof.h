// The device's proof of registration in the token file. On the device the account service of the
// firmware writes it, and the tokens count only beside it; on a development machine, which has no
// such service, every device counts as registered, so that a sign-in survives a restart.

#ifndef PLATFORM_HOST_REGISTRATIONPROOF_H_
#define PLATFORM_HOST_REGISTRATIONPROOF_H_

#include <ov_sdk.h>

namespace host {

// Writes a random proof, as a secret, when `config` is the token file and holds none that can be
// read. To be called before the file is saved; other files are left alone.
void provideRegistrationProof(ov_config* config);

}  // namespace host

#endif  // PLATFORM_HOST_REGISTRATIONPROOF_H_
