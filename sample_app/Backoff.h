// The waits between attempts. Used by one thread.

#ifndef SAMPLE_APP_BACKOFF_H_
#define SAMPLE_APP_BACKOFF_H_

#include <chrono>

namespace sample_app {

class Backoff {
 public:
  // `first` is the first wait; each next one is twice as long, up to 60 times the first.
  explicit Backoff(std::chrono::milliseconds first);

  // The next wait.
  std::chrono::milliseconds next();

  // After a success: starts again with the first wait.
  void reset();

 private:
  const std::chrono::milliseconds first_;
  std::chrono::milliseconds next_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_BACKOFF_H_
