#include "sample_app/SignalWaiter.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace sample_app {

SignalWaiter::SignalWaiter() {
  ::sigemptyset(&signals_);
  ::sigaddset(&signals_, SIGTERM);
  ::sigaddset(&signals_, SIGINT);
  ::sigprocmask(SIG_BLOCK, &signals_, nullptr);
}

bool SignalWaiter::wait(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (!mustEnd_) {
    const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::max(end - std::chrono::steady_clock::now(), std::chrono::steady_clock::duration(0)));
    timespec limit = {};
    limit.tv_sec = static_cast<std::time_t>(left.count() / 1000000000);
    limit.tv_nsec = static_cast<long>(left.count() % 1000000000);
    mustEnd_ = ::sigtimedwait(&signals_, nullptr, &limit) > 0;
    if (!mustEnd_ && errno == EAGAIN) {
      return true;
    }
  }
  return false;
}

}  // namespace sample_app
