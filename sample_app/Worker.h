// Works through the queue of samples: what the background application does. Used by one thread, of
// the process that holds the WorkerLock.

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

// Each item ends in files beside its sample or in the list of failures, and only then leaves the
// queue: a worker that is killed at any step loses none, but may have made an item's files already
// when it is worked again.
class Worker {
 public:
  // How one step ended.
  enum class Step {
    Done,       // the item has its files, and is removed
    SetAside,   // nothing can be made of the item; it is in the list of failures, and removed
    Empty,      // there is no item
    Postponed,  // the item stays: no network, or files that cannot be written
    SignedOut,  // the item stays: nobody is signed in
  };

  // Why run() returned.
  enum class End { Drained, Postponed, SignedOut, Stopped };

  // Keeps references to `waiter` and `listener`. `idle` is how long the queue has to stay empty
  // before run() leaves, `firstWait` the first wait after a postponed item: without one run()
  // leaves then.
  Worker(std::shared_ptr<graphql::GraphQLStorageApi> storage, Waiter& waiter,
         WorkListener& listener, std::chrono::milliseconds idle,
         std::optional<std::chrono::milliseconds> firstWait);

  // Works until the queue stays empty, nobody is signed in, or the waiter says that the process
  // shall end, which is looked at between the steps. After Drained the queue is locked until this
  // object, or better the process, is gone: see WorkQueue::closeIfEmpty().
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
