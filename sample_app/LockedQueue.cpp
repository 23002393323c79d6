#include "sample_app/LockedQueue.h"

#include <algorithm>

using graphql::GraphQLSampleQueue;

namespace sample_app {

bool isSame(const SampleItem& one, const SampleItem& other) {
  return one.bookId == other.bookId && one.sampleFilePath == other.sampleFilePath;
}

LockedQueue::LockedQueue() : isHeld_(queue_.lockSampleQueueFile() == 0) {}

std::vector<SampleItem> LockedQueue::items() {
  std::vector<SampleItem> all;
  queue_.deserializeSampleItems(&all);
  return all;
}

bool LockedQueue::replace(const std::vector<SampleItem>& items) {
  queue_.serializeSampleItems(items);
  const std::vector<SampleItem> held = this->items();
  return std::equal(held.begin(), held.end(), items.begin(), items.end(), isSame);
}

std::optional<SampleItem> oldestItem() {
  SampleItem item = GraphQLSampleQueue().getNextSample();
  if (!item.bookId.empty() || !item.sampleFilePath.empty()) {
    return item;
  }
  // The library returns two empty texts for an empty queue, but they can also be an item.
  const std::vector<SampleItem> all = LockedQueue().items();
  return all.empty() ? std::nullopt : std::optional<SampleItem>(all.front());
}

}  // namespace sample_app
