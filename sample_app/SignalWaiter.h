// Waiting that signals cut short. Used by the main thread, and made before any other thread is.

#ifndef SAMPLE_APP_SIGNALWAITER_H_
#define SAMPLE_APP_SIGNALWAITER_H_

#include <vector>

#include "base/BlockedSignals.h"
#include "sample_app/Waiter.h"

namespace sample_app {

class SignalWaiter : public Waiter {
 public:
  // Keeps `signals` from interrupting anything: only wait() looks for them. They take effect when
  // the object is destroyed.
  explicit SignalWaiter(const std::vector<int>& signals);

  bool wait(std::chrono::milliseconds time) override;

 private:
  const base::BlockedSignals signals_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_SIGNALWAITER_H_
