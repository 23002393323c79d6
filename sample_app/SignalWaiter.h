// Waiting that SIGTERM and SIGINT cut short. There is one per process, used by its main thread and
// made before any other thread is.

#ifndef SAMPLE_APP_SIGNALWAITER_H_
#define SAMPLE_APP_SIGNALWAITER_H_

#include <csignal>

#include "sample_app/Waiter.h"

namespace sample_app {

class SignalWaiter : public Waiter {
 public:
  // Keeps both signals from interrupting anything from now on: only wait() looks for them.
  SignalWaiter();

  bool wait(std::chrono::milliseconds time) override;

 private:
  sigset_t signals_;
  bool mustEnd_ = false;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_SIGNALWAITER_H_
