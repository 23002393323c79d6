// The queue of samples as the commands see it. Used by one thread.

#ifndef BOOKSTORE_SAMPLEQUEUE_H_
#define BOOKSTORE_SAMPLEQUEUE_H_

#include <string>
#include <vector>

#include <json/forwards.h>

#include "graphql_api/GraphQLSampleQueue.h"

namespace bookstore {

using SampleItem = graphql::GraphQLSampleQueue::SampleItem;

// The queue, with its lock held while the object lives. Meanwhile another object of this process
// would wait for ever.
class LockedSampleQueue {
 public:
  // Waits for the lock. Throws Failure when it cannot be had.
  LockedSampleQueue();

  LockedSampleQueue(const LockedSampleQueue&) = delete;
  LockedSampleQueue& operator=(const LockedSampleQueue&) = delete;

  // Every item, oldest first.
  std::vector<SampleItem> items();

  // Makes `items` the content of the queue. Throws Failure when it does not hold them afterwards.
  void replace(const std::vector<SampleItem>& items);

 private:
  graphql::GraphQLSampleQueue queue_;
};

// The items of the queue, oldest first; takes its lock. Throws Failure as above.
std::vector<SampleItem> queuedSamples();

// The item that the library hands to a worker. Throws Failure when there is none, and as above.
SampleItem oldestSample();

// The item with the names of its members.
Json::Value toJson(const SampleItem& item);

}  // namespace bookstore

#endif  // BOOKSTORE_SAMPLEQUEUE_H_
