// Waits for what another process or thread does.

#ifndef TESTS_SUPPORT_WAITUNTIL_H_
#define TESTS_SUPPORT_WAITUNTIL_H_

#include <chrono>
#include <functional>
#include <thread>

namespace support {

constexpr std::chrono::seconds kPatience(40);

// Asks `holds` again and again. Returns true as soon as it does, and false when it has not within
// `patience`.
inline bool waitUntil(const std::function<bool()>& holds,
                      std::chrono::milliseconds patience = kPatience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace support

#endif  // TESTS_SUPPORT_WAITUNTIL_H_
