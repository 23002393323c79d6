// Keeps a second worker away from the queue. Used by one thread.

#ifndef SAMPLE_APP_WORKERLOCK_H_
#define SAMPLE_APP_WORKERLOCK_H_

#include "base/WholeFile.h"

namespace sample_app {

// The lock file. It lives beside the queue and not below the root: there is one queue per machine,
// and two workers of it, under whichever roots, would remove each other's items.
extern const char kWorkerLockPath[];

// The lock of the one worker of this machine, held until the object, or the process, is gone.
class WorkerLock {
 public:
  enum class State {
    Held,
    Busy,    // another worker has it
    Failed,  // logged
  };

  // Tries to take the lock, without waiting. The file is created when missing, and stays.
  WorkerLock();

  State state() const { return state_; }

 private:
  base::Descriptor file_;
  State state_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKERLOCK_H_
