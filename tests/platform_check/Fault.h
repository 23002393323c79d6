// Faults of a platform implementation. The library of these sources comes before the implementation
// in the order of the dynamic linker: its functions are called first, and call the real ones. The
// environment variable BROKEN_PLATFORM names the one fault that is played; README.md lists all.

#ifndef TESTS_PLATFORM_CHECK_FAULT_H_
#define TESTS_PLATFORM_CHECK_FAULT_H_

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

namespace broken {

// Whether this fault is to be played.
inline bool isFault(const char* name) {
  const char* fault = std::getenv("BROKEN_PLATFORM");
  return fault != nullptr && std::strcmp(fault, name) == 0;
}

// The real function behind a symbol.
template <typename Function>
Function realSymbol(const char* symbol) {
  void* const found = ::dlsym(RTLD_NEXT, symbol);
  return reinterpret_cast<Function>(found);
}

// The real function behind the one that replaces it.
template <typename Function, typename Replacement>
Function real(Replacement replacement) {
  void* address = nullptr;
  std::memcpy(&address, &replacement, sizeof address);  // of a member function: its first word
  Dl_info self = {};
  ::dladdr(address, &self);
  return realSymbol<Function>(self.dli_sname);
}

}  // namespace broken

#endif  // TESTS_PLATFORM_CHECK_FAULT_H_
