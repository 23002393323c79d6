// The application graphql_sample_metadata.app: the library starts it when a sample is added, and it
// exits when the queue stays empty.

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
      return EXIT_SUCCESS;  // the other worker finds the new items
    case sample_app::WorkerLock::State::Failed:
      return EXIT_FAILURE;
  }
  sample_app::LogListener listener;
  sample_app::Worker worker(std::make_shared<graphql::GraphQLStorageApi>(), waiter, listener,
                            sample_app::idleTime(), sample_app::firstWait());
  worker.run();
  // Exits with the drained queue locked. If it were unlocked earlier, another program could add an
  // item and find this application still running.
  ::_exit(EXIT_SUCCESS);
}

}  // namespace

int main() {
  try {
    return work();
  } catch (const std::exception& exception) {
    BASE_LOG_FAILURE("The sample application failed: %s", exception.what());
    return EXIT_FAILURE;
  }
}
