#include "bookstore/terminal/BlockedSignals.h"

#include <sys/signalfd.h>

namespace bookstore {

namespace {

sigset_t setOf(const std::vector<int>& signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) {
    sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

BlockedSignals::BlockedSignals(const std::vector<int>& signals)
    : blocked_(setOf(signals)), before_(), descriptor_(::signalfd(-1, &blocked_, SFD_CLOEXEC)) {
  ::pthread_sigmask(SIG_BLOCK, &blocked_, &before_);
}

BlockedSignals::~BlockedSignals() {
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace bookstore
