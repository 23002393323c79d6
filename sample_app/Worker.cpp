#include "sample_app/Worker.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "host/Log.h"
#include "host/VisibleText.h"
#include "sample_app/FailureList.h"
#include "sample_app/MetadataFile.h"
#include "sample_app/SamplePath.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

namespace {

constexpr std::chrono::milliseconds kLongestPoll(200);

// What another attempt can get around, as against a name that is too long or a folder that is
// read-only.
bool isTemporary(int error) {
  return error == ENOSPC || error == EDQUOT || error == EIO || error == EMFILE || error == ENFILE ||
         error == ENOMEM;
}

}  // namespace

Worker::Worker(std::shared_ptr<graphql::GraphQLStorageApi> storage, Waiter& waiter,
               std::chrono::milliseconds idle, std::chrono::milliseconds firstWait)
    : source_(std::move(storage)), waiter_(waiter), idle_(idle), backoff_(firstWait) {}

Worker::End Worker::run() {
  while (waiter_.wait(std::chrono::milliseconds(0))) {
    switch (workOnOldest()) {
      case Step::Done:
      case Step::SetAside:
        idled_ = std::chrono::milliseconds(0);
        backoff_.reset();
        break;
      case Step::Empty:
        if (idled_ >= idle_ && queue_.closeIfEmpty()) {
          return End::Drained;
        }
        pauseWhileEmpty();
        break;
      case Step::Postponed:
        waiter_.wait(backoff_.next());
        break;
      case Step::SignedOut:
        return End::SignedOut;
    }
  }
  return End::Asked;
}

Worker::Step Worker::workOnOldest() {
  if (!queue_.recover()) {
    return postpone("the journal of the queue cannot be used");
  }
  const std::optional<WorkQueue::Item> item = queue_.oldest();
  return item ? work(*item) : Step::Empty;
}

Worker::Step Worker::work(const WorkQueue::Item& item) {
  const SamplePath sample = locateSample(item.sampleFilePath);
  if (!sample.isUsable()) {
    return setAside(item, sample.problem);
  }
  const MetadataSource::Lookup lookup = source_.find(item.bookId);
  switch (lookup.outcome) {
    case MetadataSource::Outcome::Found:
      break;
    case MetadataSource::Outcome::Unknown:
      return setAside(item, lookup.reason);
    case MetadataSource::Outcome::Unreachable:
      return postpone(lookup.reason);
    case MetadataSource::Outcome::SignedOut:
      HOST_LOG_FAILURE("The samples stay in the queue: %s; sign in, and add a sample",
                       lookup.reason.c_str());
      return Step::SignedOut;
  }
  const Thumbnail thumbnail = fetchThumbnail(lookup.metadata.thumbnailUrl);
  if (const host::FileFailure failure =
          placeMetadata(sample.path, item, lookup.metadata, thumbnail)) {
    const std::string reason = "the metadata cannot be written: " + failure.text();
    return isTemporary(failure.error) ? postpone(reason) : setAside(item, reason);
  }
  return finish(item, Step::Done);
}

// The last step on an item: whatever came before is on the disk.
Worker::Step Worker::finish(const WorkQueue::Item& item, Step step) {
  if (!queue_.removeOldest(item)) {
    return postpone("the item cannot be removed from the queue");
  }
  postponedFor_.clear();
  return step;
}

Worker::Step Worker::setAside(const WorkQueue::Item& item, const std::string& reason) {
  HOST_LOG_FAILURE("The sample %s of the book %s is set aside: %s",
                   host::visibleText(item.sampleFilePath).c_str(),
                   host::visibleText(item.bookId).c_str(), reason.c_str());
  return listFailure(item, reason) ? finish(item, Step::SetAside)
                                   : postpone("the list of failures cannot be written");
}

// Attempts can go on for days: only a new reason is worth a line.
Worker::Step Worker::postpone(const std::string& reason) {
  if (reason != postponedFor_) {
    HOST_LOG_FAILURE("The samples wait: %s; it is tried again", reason.c_str());
    postponedFor_ = reason;
  }
  return Step::Postponed;
}

void Worker::pauseWhileEmpty() {
  const std::chrono::milliseconds pause =
      std::clamp(idle_ - idled_, std::chrono::milliseconds(1), kLongestPoll);
  waiter_.wait(pause);
  idled_ += pause;
}

}  // namespace sample_app
