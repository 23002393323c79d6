#include "base/BlockedSignals.h"

#include <poll.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <cerrno>

namespace base {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

sigset_t setOf(const std::vector<int>& signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) {
    sigaddset(&set, signal);
  }
  return set;
}

// The time until `end`, rounded up; 0 when that is over.
int millisecondsUntil(Clock::time_point end) {
  const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
  return static_cast<int>(std::max(left, milliseconds(0)).count());
}

}  // namespace

BlockedSignals::BlockedSignals(const std::vector<int>& signals)
    : blocked_(setOf(signals)), before_(), descriptor_(::signalfd(-1, &blocked_, SFD_CLOEXEC)) {
  ::pthread_sigmask(SIG_BLOCK, &blocked_, &before_);
}

BlockedSignals::~BlockedSignals() {
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

BlockedSignals::Wakeup BlockedSignals::wait(milliseconds time, int descriptor) const {
  const Clock::time_point end = Clock::now() + time;
  pollfd sources[] = {{descriptor_.get(), POLLIN, 0}, {descriptor, POLLIN, 0}};
  int ready = -1;
  do {  // other signals interrupt poll()
    ready = ::poll(sources, 2, time == kForever ? -1 : millisecondsUntil(end));
  } while (ready < 0 && errno == EINTR);
  if (ready <= 0) {
    return Wakeup::Timeout;
  }
  return sources[0].revents != 0 ? Wakeup::Signal : Wakeup::Readable;
}

}  // namespace base
