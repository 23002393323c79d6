#include "sample_app/Worker.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "sample_app/FailureList.h"
#include "sample_app/MetadataFile.h"
#include "sample_app/SamplePath.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

namespace {

constexpr std::chrono::milliseconds kLongestPoll(200);
const char kNotRemoved[] = "the item cannot be removed from the queue";

// True if another attempt can succeed, unlike for a name that is too long or a read-only folder.
bool isTemporary(int error) {
  return error == ENOSPC || error == EDQUOT || error == EIO || error == EMFILE || error == ENFILE ||
         error == ENOMEM;
}

}  // namespace

Worker::Worker(std::shared_ptr<graphql::GraphQLStorageApi> storage, Waiter& waiter,
               WorkListener& listener, std::chrono::milliseconds idle,
               std::optional<std::chrono::milliseconds> firstWait)
    : source_(std::move(storage)), waiter_(waiter), listener_(listener), idle_(idle) {
  if (firstWait) {
    backoff_.emplace(*firstWait);
  }
}

Worker::End Worker::run() {
  while (waiter_.wait(std::chrono::milliseconds(0))) {
    switch (workOnOldest()) {
      case Step::Done:
      case Step::SetAside:
        idled_ = std::chrono::milliseconds(0);
        if (backoff_) {
          backoff_->reset();
        }
        break;
      case Step::Empty:
        if (idled_ >= idle_ && queue_.closeIfEmpty()) {
          return End::Drained;
        }
        pauseWhileEmpty();
        break;
      case Step::Postponed:
        if (!backoff_) {
          return End::Postponed;
        }
        waiter_.wait(backoff_->next());
        break;
      case Step::SignedOut:
        return End::SignedOut;
    }
  }
  return End::Stopped;
}

Worker::Step Worker::workOnOldest() {
  if (!queue_.recover()) {
    return postpone(Obstacle::Files, "the journal of the queue cannot be used");
  }
  const std::optional<SampleItem> item = oldestItem();
  return item ? work(*item) : Step::Empty;
}

Worker::Step Worker::work(const SampleItem& item) {
  listener_.begins(item);
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
      return postpone(Obstacle::Network, lookup.reason);
    case MetadataSource::Outcome::ServerError:
      return postpone(Obstacle::Server, lookup.reason);
    case MetadataSource::Outcome::LockFailed:
      return postpone(Obstacle::Files, lookup.reason);
    case MetadataSource::Outcome::SignedOut:
      listener_.signedOut(lookup.reason);
      return Step::SignedOut;
  }
  return place(item, sample.path, lookup.metadata);
}

// The item is removed last, when its files are on the disk.
Worker::Step Worker::place(const SampleItem& item, const std::string& path,
                           const graphql::GraphQLApi::SampleMetadata& metadata) {
  listener_.found(metadata);
  const Thumbnail thumbnail = fetchThumbnail(metadata.thumbnailUrl);
  if (const base::FileFailure failure = placeMetadata(path, item, metadata, thumbnail)) {
    const std::string reason = "the metadata cannot be written: " + failure.text();
    return isTemporary(failure.error) ? postpone(Obstacle::Files, reason) : setAside(item, reason);
  }
  if (!queue_.removeOldest(item)) {
    return postpone(Obstacle::Files, kNotRemoved);
  }
  listener_.done(item, metadata, thumbnail);
  return Step::Done;
}

Worker::Step Worker::setAside(const SampleItem& item, const std::string& reason) {
  if (!listFailure(item, reason)) {
    return postpone(Obstacle::Files, "the list of failures cannot be written");
  }
  if (!queue_.removeOldest(item)) {
    return postpone(Obstacle::Files, kNotRemoved);
  }
  listener_.setAside(item, reason);
  return Step::SetAside;
}

Worker::Step Worker::postpone(Obstacle obstacle, const std::string& reason) {
  listener_.postponed(obstacle, reason);
  return Step::Postponed;
}

void Worker::pauseWhileEmpty() {
  const std::chrono::milliseconds pause =
      std::clamp(idle_ - idled_, std::chrono::milliseconds(1), kLongestPoll);
  waiter_.wait(pause);
  idled_ += pause;
}

}  // namespace sample_app
