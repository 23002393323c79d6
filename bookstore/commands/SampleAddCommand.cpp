#include "bookstore/commands/SampleAddCommand.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <json/json.h>

#include "base/DevicePaths.h"
#include "base/Settings.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/SampleQueue.h"
#include "bookstore/commands/Validation.h"
#include "graphql_api/GraphQLHeader.h"
#include "sample_app/SamplePath.h"

namespace bookstore {

namespace {

// A worker would set aside any other path.
void requireUsablePath(const std::string& devicePath) {
  const sample_app::SamplePath sample = sample_app::locateSample(devicePath);
  if (!sample.isUsable()) {
    throw Failure(
        kUsage, sample.problem,
        "Use a path on the device, such as /mnt/ext1/NAME, in a folder that exists below " +
            base::rootFolder());
  }
}

bool isInstalled(const std::string& application) {
  std::error_code error;
  return std::filesystem::is_regular_file(application, error) &&
         ::access(application.c_str(), X_OK) == 0;
}

bool isQueued(const SampleItem& wanted) {
  const std::vector<SampleItem> items = queuedSamples();
  return std::any_of(items.begin(), items.end(),
                     [&](const SampleItem& item) { return sample_app::isSame(item, wanted); });
}

void requireQueued(const SampleItem& item) {
  if (!isQueued(item)) {
    throw Failure(kLocalFailure,
                  std::string("the sample is not in the queue, ") + base::kSampleQueuePath,
                  "See the log lines above, and check that /tmp has free space");
  }
}

}  // namespace

void runSampleAdd(Context& context) {
  const SampleItem item = {validBookId(context.arguments), context.arguments.text("FILE")};
  requireUsablePath(item.sampleFilePath);
  const std::string application = base::hostPath(base::kSampleApplicationPath);
  const bool hasApplication = isInstalled(application);
  queuedSamples();  // addSample() does not report that it cannot lock the queue
  addSample(item.bookId.c_str(), item.sampleFilePath.c_str());
  if (!hasApplication) {
    requireQueued(item);  // with an application it may already be removed
    context.output.note("no program processes the queue: " + application +
                        " is missing. Install the application there, or run \"bookstore sample "
                        "work\".");
  }
  if (!context.storage->isLoggedIn()) {
    context.output.note(
        "the sample stays in the queue: nobody is signed in. Run \"bookstore sign-in\", then "
        "\"bookstore sample work\".");
  }

  Json::Value document = toJson(item);
  document["applicationInstalled"] = hasApplication;
  context.output.printResult(
      "Queued the sample of the book " + item.bookId + " for " + item.sampleFilePath, document);
}

}  // namespace bookstore
