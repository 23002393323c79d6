// Processes the queue of samples: the work of the background application. Used by one thread of the
// process that has the WorkerLock.

#ifndef SAMPLE_APP_WORKER_H_
#define SAMPLE_APP_WORKER_H_

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "graphql_api/GraphQLStorageApi.h"
#include "sample_app/Backoff.h"
#include "sample_app/MetadataSource.h"
#include "sample_app/Waiter.h"
#include "sample_app/WorkListener.h"
#include "sample_app/WorkQueue.h"

namespace sample_app {

// An item is removed from the queue after its files, or its line in the list of failures, are
// written. A worker that is killed at any step loses no item, but the next worker may write an
// item's files again.
class Worker {
 public:
  // How one step ended.
  enum class Step {
    Done,       // the item has its files, and is removed
    SetAside,   // the item cannot be processed; it is in the list of failures, and removed
    Empty,      // the queue has no item
    Postponed,  // the item stays: no network, or files that cannot be written
    SignedOut,  // the item stays: nobody is signed in
  };

  // Why run() returned.
  enum class End { Drained, Postponed, SignedOut, Stopped };

  // Keeps references to `waiter` and `listener`. `idle` is how long the queue has to be empty
  // before run() returns. `firstWait` is the first wait after a postponed item; without it, run()
  // returns after a postponed item.
  Worker(std::shared_ptr<graphql::GraphQLStorageApi> storage, Waiter& waiter,
         WorkListener& listener, std::chrono::milliseconds idle,
         std::optional<std::chrono::milliseconds> firstWait);

  // Works until the queue stays empty, nobody is signed in, or the waiter says, between two steps,
  // that the process must end. After Drained the queue is locked until this object or the process
  // ends: see WorkQueue::closeIfEmpty().
  End run();

  // Works on the oldest item.
  Step workOnOldest();

 private:
  Step work(const SampleItem& item);
  Step place(const SampleItem& item, const std::string& path,
             const graphql::GraphQLApi::SampleMetadata& metadata);
  Step setAside(const SampleItem& item, const std::string& reason);
  Step postpone(Obstacle obstacle, const std::string& reason);
  void pauseWhileEmpty();

  WorkQueue queue_;
  MetadataSource source_;
  Waiter& waiter_;
  WorkListener& listener_;
  const std::chrono::milliseconds idle_;
  std::chrono::milliseconds idled_{0};
  std::optional<Backoff> backoff_;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKER_H_
