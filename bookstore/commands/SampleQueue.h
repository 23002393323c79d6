// The queue of samples as the commands see it. Used by one thread.

#ifndef BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_
#define BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_

#include <string>
#include <vector>

#include <json/forwards.h>

#include "sample_app/LockedQueue.h"

namespace bookstore {

using sample_app::SampleItem;

// The queue, locked while the object lives. Waits for the lock; throws Failure when it cannot be
// had.
class LockedSampleQueue {
 public:
  LockedSampleQueue();

  // Every item, oldest first.
  std::vector<SampleItem> items() { return queue_.items(); }

  // Makes `items` the content of the queue. Throws Failure when it does not hold them afterwards.
  void replace(const std::vector<SampleItem>& items);

 private:
  sample_app::LockedQueue queue_;
};

// The items of the queue, oldest first; takes its lock. Throws Failure as above.
std::vector<SampleItem> queuedSamples();

// The item that the library hands to a worker. Throws Failure when there is none, and as above.
SampleItem oldestSample();

// The item with the names of its members.
Json::Value toJson(const SampleItem& item);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_
