#include "bookstore/SampleQueue.h"

#include <algorithm>

#include <json/json.h>

#include "bookstore/Failure.h"

namespace bookstore {

namespace {

const char kQueue[] = "the queue of samples, /tmp/sample.queue,";

bool isSame(const SampleItem& one, const SampleItem& other) {
  return one.bookId == other.bookId && one.sampleFilePath == other.sampleFilePath;
}

}  // namespace

LockedSampleQueue::LockedSampleQueue() {
  if (queue_.lockSampleQueueFile() != 0) {
    throw Failure(kLocalFailure, std::string(kQueue) + " cannot be opened and locked",
                  "see the log lines above, and whether the file belongs to another user");
  }
}

std::vector<SampleItem> LockedSampleQueue::items() {
  std::vector<SampleItem> items;
  queue_.deserializeSampleItems(&items);
  return items;
}

void LockedSampleQueue::replace(const std::vector<SampleItem>& items) {
  queue_.serializeSampleItems(items);
  // The library does not tell whether it could write.
  const std::vector<SampleItem> held = this->items();
  if (!std::equal(held.begin(), held.end(), items.begin(), items.end(), isSame)) {
    throw Failure(kLocalFailure, std::string(kQueue) + " could not be rewritten",
                  "see whether /tmp has room, and what bookstore sample list shows");
  }
}

std::vector<SampleItem> queuedSamples() {
  return LockedSampleQueue().items();
}

SampleItem oldestSample() {
  SampleItem item = graphql::GraphQLSampleQueue().getNextSample();
  if (!item.bookId.empty() || !item.sampleFilePath.empty()) {
    return item;
  }
  // Two empty texts stand for an empty queue, but can also be an item of it.
  const std::vector<SampleItem> all = queuedSamples();
  if (all.empty()) {
    throw Failure(kNoSession, "no sample is in the queue", "bookstore sample add");
  }
  return all.front();
}

Json::Value toJson(const SampleItem& item) {
  Json::Value value;
  value["bookId"] = item.bookId;
  value["sampleFilePath"] = item.sampleFilePath;
  return value;
}

}  // namespace bookstore
