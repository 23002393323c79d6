// Waits until a time has passed or a signal arrives. For the main thread; constructed before any
// other thread starts.

#ifndef SAMPLE_APP_SIGNALWAITER_H_
#define SAMPLE_APP_SIGNALWAITER_H_

#include <vector>

#include "base/BlockedSignals.h"
#include "sample_app/Waiter.h"

namespace sample_app {

class SignalWaiter : public Waiter {
 public:
  // Blocks `signals`: only wait() notices them. They take effect when the object is destroyed.
  explicit SignalWaiter(const std::vector<int>& signals) : signals_(signals) {}

  bool wait(std::chrono::milliseconds time) override {
    return signals_.wait(time) != base::BlockedSignals::Wakeup::Signal;
  }

 private:
  const base::BlockedSignals signals_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_SIGNALWAITER_H_
