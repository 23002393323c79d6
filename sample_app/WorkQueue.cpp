#include "sample_app/WorkQueue.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>

#include "base/Log.h"
#include "base/Settings.h"
#include "base/WholeFile.h"

using graphql::GraphQLSampleQueue;

namespace sample_app {

const char kJournalPath[] = "/mnt/ext1/system/state/cache/sample_queue.journal";

namespace {

using Items = std::vector<SampleItem>;

constexpr std::size_t kLargestJournal = 512UL * 1024 * 1024;

bool failed(const char* what, const base::FileFailure& failure) {
  BASE_LOG_FAILURE("%s fails: %s", what, failure.text().c_str());
  return false;
}

// The items of the journal, which has the format of the queue file.
Items parseJournal(const std::string& bytes) {
  GraphQLSampleQueue queue;
  std::istringstream in(bytes);
  Items items;
  SampleItem item;
  while (in.peek() != std::istringstream::traits_type::eof() &&
         queue.deserializeSampleItem(in, &item) == 0) {
    items.push_back(item);
  }
  return items;
}

// `items` without `others`; an item that `others` contains twice is removed twice.
Items without(Items items, const Items& others) {
  for (const SampleItem& other : others) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const SampleItem& item) { return isSame(item, other); });
    if (found != items.end()) {
      items.erase(found);
    }
  }
  return items;
}

void removeJournal() {
  ::unlink(base::hostPath(kJournalPath).c_str());
}

bool rewrite(LockedQueue& queue, const Items& items) {
  if (!queue.replace(items)) {
    BASE_LOG_FAILURE("The queue of samples could not be rewritten; free some space in /tmp");
    return false;
  }
  return true;
}

bool placeJournal(const Items& items) {
  GraphQLSampleQueue queue;
  std::ostringstream bytes;
  for (const SampleItem& item : items) {
    if (queue.serializeSampleItem(item, bytes) != 0) {
      return false;  // logged by the library
    }
  }
  const std::string path = base::hostPath(kJournalPath);
  const base::FileLock lock(path);
  const base::FileFailure failure =
      lock.failure() ? lock.failure()
                     : base::placeWholeFile(path, bytes.str(), base::Placing::Replace);
  return !failure || failed("Writing the journal of the queue", failure);
}

}  // namespace

bool WorkQueue::recover() {
  std::string bytes;
  const base::FileFailure failure =
      base::readWholeFile(base::hostPath(kJournalPath), kLargestJournal, &bytes);
  if (failure) {
    return failure.error == ENOENT || failed("Reading the journal of the queue", failure);
  }
  LockedQueue queue;
  if (!queue.isHeld()) {
    return false;  // logged by the library
  }
  const Items kept = parseJournal(bytes);
  const Items present = queue.items();
  if (!without(kept, present).empty()) {
    Items all = kept;
    const Items added = without(present, kept);
    all.insert(all.end(), added.begin(), added.end());
    if (!rewrite(queue, all)) {
      return false;
    }
  }
  removeJournal();
  return true;
}

bool WorkQueue::removeOldest(const SampleItem& item) {
  // Not the library's removeSample(), which removes the first item of this book: if another program
  // has already removed `item`, that is a different item.
  LockedQueue queue;
  if (!queue.isHeld()) {
    return false;  // logged by the library
  }
  Items remaining = queue.items();
  if (remaining.empty() || !isSame(remaining.front(), item)) {
    return true;
  }
  remaining.erase(remaining.begin());
  if (!remaining.empty() && !placeJournal(remaining)) {
    return false;
  }
  if (!rewrite(queue, remaining)) {
    return false;
  }
  if (!remaining.empty()) {
    removeJournal();
  }
  return true;
}

bool WorkQueue::closeIfEmpty() {
  closed_.emplace();
  if (closed_->isHeld() && !closed_->items().empty()) {
    closed_.reset();
    return false;
  }
  return true;
}

}  // namespace sample_app
