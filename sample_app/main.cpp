// The application graphql_sample_metadata.app: starts by itself when a sample is added, and leaves
// when the queue stays empty.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>

#include "base/Log.h"
#include "graphql_api/GraphQLStorageApi.h"
#include "sample_app/LogListener.h"
#include "sample_app/Settings.h"
#include "sample_app/SignalWaiter.h"
#include "sample_app/Worker.h"
#include "sample_app/WorkerLock.h"

namespace {

int work() {
  sample_app::SignalWaiter waiter({SIGTERM, SIGINT});
  const sample_app::WorkerLock lock;
  switch (lock.state()) {
    case sample_app::WorkerLock::State::Held:
      break;
    case sample_app::WorkerLock::State::Busy:
      return EXIT_SUCCESS;  // the other worker finds whatever was added
    case sample_app::WorkerLock::State::Failed:
      return EXIT_FAILURE;
  }
  sample_app::LogListener listener;
  sample_app::Worker worker(std::make_shared<graphql::GraphQLStorageApi>(), waiter, listener,
                            sample_app::idleTime(), sample_app::firstWait());
  worker.run();
  // Now, with the lock of the drained queue: one that is dropped before the process is gone would
  // let somebody add an item and take the application for running.
  ::_exit(EXIT_SUCCESS);
}

}  // namespace

int main() {
  try {
    return work();
  } catch (const std::exception& exception) {
    BASE_LOG_FAILURE("The application of the samples ends: %s", exception.what());
    return EXIT_FAILURE;
  }
}
