// The queue of samples, locked. Used by one thread.

#ifndef SAMPLE_APP_LOCKEDQUEUE_H_
#define SAMPLE_APP_LOCKEDQUEUE_H_

#include <optional>
#include <vector>

#include "graphql_api/GraphQLSampleQueue.h"

namespace sample_app {

using SampleItem = graphql::GraphQLSampleQueue::SampleItem;

bool isSame(const SampleItem& one, const SampleItem& other);

// Has the lock while it lives. Another object of this process would wait forever.
class LockedQueue {
 public:
  // Waits for the lock.
  LockedQueue();

  LockedQueue(const LockedQueue&) = delete;
  LockedQueue& operator=(const LockedQueue&) = delete;

  // False if locking failed, which the library has logged.
  bool isHeld() const { return isHeld_; }

  // Every item, oldest first.
  std::vector<SampleItem> items();

  // Replaces the content of the queue by `items`. Returns false if the queue has other content
  // afterwards: the library does not report whether it could write.
  bool replace(const std::vector<SampleItem>& items);

 private:
  graphql::GraphQLSampleQueue queue_;
  const bool isHeld_;
};

// The item that the library gives to a worker; none if the queue is empty. Takes the lock.
std::optional<SampleItem> oldestItem();

}  // namespace sample_app

#endif  // SAMPLE_APP_LOCKEDQUEUE_H_
