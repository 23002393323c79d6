// Texts that nobody can guess. Holds no state; safe from any thread.

#ifndef HOST_RANDOMTEXT_H_
#define HOST_RANDOMTEXT_H_

#include <cstddef>
#include <string>

namespace host {

// `length` upper-case letters and digits from the system's source of random bytes.
std::string randomText(std::size_t length);

}  // namespace host

#endif  // HOST_RANDOMTEXT_H_
