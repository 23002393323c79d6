// Signals that wait until something was put back in order.

#ifndef BASE_BLOCKEDSIGNALS_H_
#define BASE_BLOCKEDSIGNALS_H_

#include <chrono>
#include <csignal>
#include <vector>

#include "base/WholeFile.h"

namespace base {

// Blocks the given signals in the calling thread, which has to be the process's only one, while the
// object lives. A signal that arrives in that time takes effect when the object is destroyed.
class BlockedSignals {
 public:
  enum class Wakeup { Signal, Readable, Timeout };

  // A wait without an end.
  static constexpr std::chrono::milliseconds kForever{-1};

  explicit BlockedSignals(const std::vector<int>& signals);
  ~BlockedSignals();

  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

  // Waits at most `time` until one of the signals has arrived or `descriptor` is readable; a
  // descriptor of -1 is never readable. A signal that has arrived ends every wait from then on, and
  // counts before the other two.
  Wakeup wait(std::chrono::milliseconds time, int descriptor = -1) const;

  // The signals that were blocked before, for a process that is started in the meantime.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t blocked_;
  sigset_t before_;
  Descriptor descriptor_;
};

}  // namespace base

#endif  // BASE_BLOCKEDSIGNALS_H_
