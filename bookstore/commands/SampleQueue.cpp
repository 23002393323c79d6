#include "bookstore/commands/SampleQueue.h"

#include <optional>

#include <json/json.h>

#include "bookstore/Failure.h"

namespace bookstore {

namespace {

const char kQueue[] = "the queue of samples, /tmp/sample.queue,";

}  // namespace

LockedSampleQueue::LockedSampleQueue() {
  if (!queue_.isHeld()) {
    throw Failure(kLocalFailure, std::string(kQueue) + " cannot be opened and locked",
                  "see the log lines above, and whether the file belongs to another user");
  }
}

void LockedSampleQueue::replace(const std::vector<SampleItem>& items) {
  if (!queue_.replace(items)) {
    throw Failure(kLocalFailure, std::string(kQueue) + " could not be rewritten",
                  "see whether /tmp has room, and what bookstore sample list shows");
  }
}

std::vector<SampleItem> queuedSamples() {
  return LockedSampleQueue().items();
}

SampleItem oldestSample() {
  const std::optional<SampleItem> item = sample_app::oldestItem();
  if (!item) {
    const LockedSampleQueue queue;  // one that cannot be opened is none that is empty
    throw Failure(kNoSession, "no sample is in the queue", "bookstore sample add");
  }
  return *item;
}

Json::Value toJson(const SampleItem& item) {
  Json::Value value;
  value["bookId"] = item.bookId;
  value["sampleFilePath"] = item.sampleFilePath;
  return value;
}

}  // namespace bookstore
