// Prevents a second worker of the queue. Used by one thread.

#ifndef SAMPLE_APP_WORKERLOCK_H_
#define SAMPLE_APP_WORKERLOCK_H_

#include "base/WholeFile.h"

namespace sample_app {

// The lock file. It is beside the queue and not below the root folder: there is one queue per
// machine, and two workers with different root folders would remove each other's items.
extern const char kWorkerLockPath[];

// The lock of the one worker of this machine, released when the object or the process ends.
class WorkerLock {
 public:
  enum class State {
    Held,
    Busy,    // another worker has the lock
    Failed,  // logged
  };

  // Tries to take the lock, without waiting. Creates the file if it is missing, and never removes
  // it.
  WorkerLock();

  State state() const { return state_; }

 private:
  base::Descriptor file_;
  State state_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKERLOCK_H_
