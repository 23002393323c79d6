#include "bookstore/commands/SampleQueue.h"

#include <algorithm>
#include <optional>

#include <json/json.h>

#include "base/DevicePaths.h"
#include "bookstore/Failure.h"

using sample_app::LockedQueue;

namespace bookstore {

namespace {

std::string queueName() {
  return std::string("the queue of samples, ") + base::kSampleQueuePath + ",";
}

void requireHeld(const LockedQueue& queue) {
  if (!queue.isHeld()) {
    throw Failure(kLocalFailure, queueName() + " cannot be opened and locked",
                  "See the log lines above, and check whether the file belongs to another user");
  }
}

}  // namespace

std::vector<SampleItem> queuedSamples() {
  LockedQueue queue;
  requireHeld(queue);
  return queue.items();
}

SampleItem oldestSample() {
  const std::optional<SampleItem> item = sample_app::oldestItem();
  if (!item) {
    requireHeld(LockedQueue());  // the library reports a queue that it cannot open as empty
    throw Failure(kNoSession, "the queue is empty", "Run \"bookstore sample add\"");
  }
  return *item;
}

// Not the library's removeSample(), which does not report whether it removed anything.
SampleItem removeSample(const std::string& bookId) {
  LockedQueue queue;
  requireHeld(queue);
  std::vector<SampleItem> items = queue.items();
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const SampleItem& item) { return item.bookId == bookId; });
  if (found == items.end()) {
    throw Failure(kNoSession, "the queue has no sample of the book \"" + bookId + "\"",
                  "Use a book that \"bookstore sample list\" shows");
  }
  SampleItem removed = *found;
  items.erase(found);
  if (!queue.replace(items)) {
    throw Failure(kLocalFailure, queueName() + " could not be rewritten",
                  "Free some space in /tmp, and check the queue with \"bookstore sample list\"");
  }
  return removed;
}

Json::Value toJson(const SampleItem& item) {
  Json::Value value;
  value["bookId"] = item.bookId;
  value["sampleFilePath"] = item.sampleFilePath;
  return value;
}

}  // namespace bookstore
