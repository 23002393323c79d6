#include "sample_app/SignalWaiter.h"

namespace sample_app {

SignalWaiter::SignalWaiter(const std::vector<int>& signals) : signals_(signals) {}

bool SignalWaiter::wait(std::chrono::milliseconds time) {
  return signals_.wait(time) != base::BlockedSignals::Wakeup::Signal;
}

}  // namespace sample_app
