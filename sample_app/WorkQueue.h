// The queue of samples for its one worker. Used by one thread of the process that has the
// WorkerLock.

#ifndef SAMPLE_APP_WORKQUEUE_H_
#define SAMPLE_APP_WORKQUEUE_H_

#include <optional>

#include "sample_app/LockedQueue.h"

namespace sample_app {

// The device path of the journal, which contains the remaining items while the queue is rewritten.
extern const char kJournalPath[];

// Removes items so that no other item is lost if the process is killed at any step. The library
// empties the queue file and writes it again, so the remaining items are first saved in a journal,
// from which recover() restores them.
class WorkQueue {
 public:
  // Restores the items that a killed worker has removed from the queue and not written again,
  // before those that were added later. Does nothing without a journal. Returns false, and logs, on
  // failure.
  bool recover();

  // Removes `item` if it is still the oldest: another program may have removed it. Returns false,
  // and logs, if the queue could not be rewritten; then call recover().
  bool removeOldest(const SampleItem& item);

  // Returns true if the queue is empty, and keeps it locked until this object or the process ends:
  // a program that adds an item waits, and then starts the application again. Also true if the
  // queue cannot be locked: then no item can be removed either.
  bool closeIfEmpty();

 private:
  std::optional<LockedQueue> closed_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKQUEUE_H_
