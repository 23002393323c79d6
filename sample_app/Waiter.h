// Waits that end early when the process is asked to end. Used by one thread.

#ifndef SAMPLE_APP_WAITER_H_
#define SAMPLE_APP_WAITER_H_

#include <chrono>

namespace sample_app {

class Waiter {
 public:
  virtual ~Waiter() = default;

  // Waits for `time`, which may be 0, and returns true. Once the process has been asked to end,
  // each call returns false immediately.
  virtual bool wait(std::chrono::milliseconds time) = 0;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WAITER_H_
