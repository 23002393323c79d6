// Signals that have to wait until something was put back in order.

#ifndef BOOKSTORE_TERMINAL_BLOCKEDSIGNALS_H_
#define BOOKSTORE_TERMINAL_BLOCKEDSIGNALS_H_

#include <csignal>
#include <vector>

#include "base/WholeFile.h"

namespace bookstore {

// Keeps the given signals from the calling thread, which has to be the process's only one, while
// the object lives. What arrived meanwhile takes effect at its end.
class BlockedSignals {
 public:
  explicit BlockedSignals(const std::vector<int>& signals);
  ~BlockedSignals();

  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

  // Readable while one of the signals waits; for poll() only.
  int descriptor() const { return descriptor_.get(); }

  // What was blocked before, for a process that is started meanwhile.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t blocked_;
  sigset_t before_;
  base::Descriptor descriptor_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_BLOCKEDSIGNALS_H_
