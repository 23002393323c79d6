// Random texts that cannot be guessed. Has no state; safe from any thread.

#ifndef PLATFORM_HOST_RANDOMTEXT_H_
#define PLATFORM_HOST_RANDOMTEXT_H_

#include <cstddef>
#include <string>

namespace host {

// `length` upper-case letters and digits from the system's random number generator.
std::string randomText(std::size_t length);

}  // namespace host

#endif  // PLATFORM_HOST_RANDOMTEXT_H_
