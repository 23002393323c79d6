#include "sample_app/WorkQueue.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>

#include "host/Log.h"
#include "host/Settings.h"
#include "host/WholeFile.h"

using graphql::GraphQLSampleQueue;

namespace sample_app {

const char kJournalPath[] = "/mnt/ext1/system/state/cache/sample_queue.journal";

namespace {

using Items = std::vector<WorkQueue::Item>;

constexpr std::size_t kLargestJournal = 512UL * 1024 * 1024;

bool isSame(const WorkQueue::Item& one, const WorkQueue::Item& other) {
  return one.bookId == other.bookId && one.sampleFilePath == other.sampleFilePath;
}

bool areSame(const Items& ones, const Items& others) {
  return std::equal(ones.begin(), ones.end(), others.begin(), others.end(), isSame);
}

// Holds the queue's lock for the length of a scope.
class QueueLock {
 public:
  explicit QueueLock(GraphQLSampleQueue& queue)
      : queue_(queue), isHeld_(queue.lockSampleQueueFile() == 0) {}
  ~QueueLock() { queue_.unlockSampleQueueFile(); }

  QueueLock(const QueueLock&) = delete;
  QueueLock& operator=(const QueueLock&) = delete;

  bool isHeld() const { return isHeld_; }

 private:
  GraphQLSampleQueue& queue_;
  const bool isHeld_;
};

bool failed(const char* what, const host::FileFailure& failure) {
  HOST_LOG_FAILURE("%s fails: %s", what, failure.text().c_str());
  return false;
}

// The journal's items in the form of the queue file.
Items parseJournal(GraphQLSampleQueue& queue, const std::string& bytes) {
  std::istringstream in(bytes);
  Items items;
  WorkQueue::Item item;
  while (in.peek() != std::istringstream::traits_type::eof() &&
         queue.deserializeSampleItem(in, &item) == 0) {
    items.push_back(item);
  }
  return items;
}

// `items` without those of `others`, each counted as often as it stands there.
Items without(Items items, const Items& others) {
  for (const WorkQueue::Item& other : others) {
    const auto found = std::find_if(items.begin(), items.end(), [&](const WorkQueue::Item& item) {
      return isSame(item, other);
    });
    if (found != items.end()) {
      items.erase(found);
    }
  }
  return items;
}

void removeJournal() {
  ::unlink(host::hostPath(kJournalPath).c_str());
}

}  // namespace

bool WorkQueue::recover() {
  std::string bytes;
  const host::FileFailure failure =
      host::readWholeFile(host::hostPath(kJournalPath), kLargestJournal, &bytes);
  if (failure) {
    return failure.error == ENOENT || failed("Reading the journal of the queue", failure);
  }
  const QueueLock lock(queue_);
  if (!lock.isHeld()) {
    return false;  // logged by the library
  }
  const Items kept = parseJournal(queue_, bytes);
  const Items present = items();
  if (!without(kept, present).empty()) {
    Items all = kept;
    const Items added = without(present, kept);
    all.insert(all.end(), added.begin(), added.end());
    if (!rewrite(all)) {
      return false;
    }
  }
  removeJournal();
  return true;
}

std::optional<WorkQueue::Item> WorkQueue::oldest() {
  Item item = queue_.getNextSample();
  if (!item.bookId.empty() || !item.sampleFilePath.empty()) {
    return item;
  }
  // Two empty texts stand for an empty queue, but can also be an item of it.
  const QueueLock lock(queue_);
  const Items all = items();
  return all.empty() ? std::nullopt : std::optional<Item>(all.front());
}

bool WorkQueue::removeOldest(const Item& item) {
  // Not the library's removeSample(), which removes the first item of this book: when somebody else
  // removed ours meanwhile, that would be another one.
  const QueueLock lock(queue_);
  if (!lock.isHeld()) {
    return false;  // logged by the library
  }
  Items remaining = items();
  if (remaining.empty() || !isSame(remaining.front(), item)) {
    return true;
  }
  remaining.erase(remaining.begin());
  if (!remaining.empty() && !placeJournal(remaining)) {
    return false;
  }
  if (!rewrite(remaining)) {
    return false;
  }
  if (!remaining.empty()) {
    removeJournal();
  }
  return true;
}

bool WorkQueue::closeIfEmpty() {
  if (queue_.lockSampleQueueFile() == 0 && !items().empty()) {
    queue_.unlockSampleQueueFile();
    return false;
  }
  return true;
}

std::vector<WorkQueue::Item> WorkQueue::items() {
  Items all;
  queue_.deserializeSampleItems(&all);
  return all;
}

bool WorkQueue::rewrite(const Items& items) {
  queue_.serializeSampleItems(items);
  // The library does not tell whether it could write.
  if (!areSame(this->items(), items)) {
    HOST_LOG_FAILURE("The queue of samples could not be rewritten; see whether /tmp has room");
    return false;
  }
  return true;
}

bool WorkQueue::placeJournal(const Items& items) {
  std::ostringstream bytes;
  for (const Item& item : items) {
    if (queue_.serializeSampleItem(item, bytes) != 0) {
      return false;  // logged by the library
    }
  }
  const std::string path = host::hostPath(kJournalPath);
  const host::FileLock lock(path);
  const host::FileFailure failure =
      lock.failure() ? lock.failure()
                     : host::placeWholeFile(path, bytes.str(), host::Placing::Replace);
  return !failure || failed("Writing the journal of the queue", failure);
}

}  // namespace sample_app
