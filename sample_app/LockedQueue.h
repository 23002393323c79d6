// The queue of samples with its lock held. Used by one thread.

#ifndef SAMPLE_APP_LOCKEDQUEUE_H_
#define SAMPLE_APP_LOCKEDQUEUE_H_

#include <optional>
#include <vector>

#include "graphql_api/GraphQLSampleQueue.h"

namespace sample_app {

using SampleItem = graphql::GraphQLSampleQueue::SampleItem;

bool isSame(const SampleItem& one, const SampleItem& other);

// Holds the lock while it lives. Meanwhile another object of this process would wait for ever.
class LockedQueue {
 public:
  // Waits for the lock.
  LockedQueue();

  LockedQueue(const LockedQueue&) = delete;
  LockedQueue& operator=(const LockedQueue&) = delete;

  // False when the lock cannot be had, which the library has logged.
  bool isHeld() const { return isHeld_; }

  // Every item, oldest first.
  std::vector<SampleItem> items();

  // Makes `items` the content of the queue. False when it does not hold them afterwards: the
  // library does not tell whether it could write.
  bool replace(const std::vector<SampleItem>& items);

 private:
  graphql::GraphQLSampleQueue queue_;
  const bool isHeld_;
};

// The item that the library hands to a worker; nothing when the queue is empty. Takes the lock.
std::optional<SampleItem> oldestItem();

}  // namespace sample_app

#endif  // SAMPLE_APP_LOCKEDQUEUE_H_
