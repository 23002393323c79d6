// The queue of samples as its one worker sees it. Used by one thread, of the process that holds the
// WorkerLock.

#ifndef SAMPLE_APP_WORKQUEUE_H_
#define SAMPLE_APP_WORKQUEUE_H_

#include <optional>

#include "sample_app/LockedQueue.h"

namespace sample_app {

// Where the items that are to stay are kept while the queue is rewritten, as a device path.
extern const char kJournalPath[];

// Takes and removes items so that none is lost when the process is killed at any step. The queue
// file itself cannot promise that: it is emptied and written anew. So what is to stay is put into a
// journal first, which recover() puts back.
class WorkQueue {
 public:
  // Puts back what a worker that was killed has taken out of the queue and not written again. What
  // others added meanwhile follows. Does nothing without a journal. False, and logged, when that
  // fails.
  bool recover();

  // Removes `item` if it is still the oldest: somebody else may have removed it. False, and logged,
  // when the queue could not be rewritten; recover() is then due.
  bool removeOldest(const SampleItem& item);

  // True when the queue is empty. Its lock is then held until this object or the process is gone:
  // whoever adds an item waits for it, and finds no task of the application any more. Also true
  // when the queue cannot be locked: then nothing can be removed from it either.
  bool closeIfEmpty();

 private:
  std::optional<LockedQueue> closed_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKQUEUE_H_
