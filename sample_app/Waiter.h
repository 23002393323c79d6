// Waiting that can be cut short. Used by one thread.

#ifndef SAMPLE_APP_WAITER_H_
#define SAMPLE_APP_WAITER_H_

#include <chrono>

namespace sample_app {

class Waiter {
 public:
  virtual ~Waiter() = default;

  // Waits for `time`, which may be 0. True when it has passed; false, at once and from then on,
  // when the process was asked to end.
  virtual bool wait(std::chrono::milliseconds time) = 0;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WAITER_H_
