#include "bookstore/commands/SampleWorkCommand.h"

#include <chrono>
#include <csignal>
#include <optional>

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/SampleQueue.h"
#include "bookstore/terminal/ProgressBar.h"
#include "bookstore/terminal/Spinner.h"
#include "bookstore/terminal/Table.h"
#include "sample_app/SamplePath.h"
#include "sample_app/SignalWaiter.h"
#include "sample_app/Worker.h"
#include "sample_app/WorkerLock.h"

using graphql::GraphQLApi;
using sample_app::MetadataSource;
using sample_app::Obstacle;
using sample_app::Worker;
using sample_app::WorkerLock;

namespace bookstore {

namespace {

// The results of the items: shown during the work, and kept for the end.
class Report : public sample_app::WorkListener {
 public:
  explicit Report(const Context& context) {
    if (!context.arguments.has("--verbose")) {  // the log then shows the progress
      progress_.emplace(context.output.terminal(), "Reading the queue");
    }
  }

  void begins(const SampleItem& item) override {
    left_ = queuedSamples().size();
    show(item.bookId);
  }

  void found(const GraphQLApi::SampleMetadata& metadata) override { show(metadata.name); }

  void done(const SampleItem& item, const GraphQLApi::SampleMetadata& metadata,
            const sample_app::Thumbnail& thumbnail) override {
    Json::Value value = toJson(item);
    value["name"] = metadata.name;
    value["author"] = metadata.author;
    value["price"] = metadata.price;
    value["oldPrice"] = metadata.oldPrice;
    value["thumbnailProblem"] =
        thumbnail.isThere() ? Json::Value() : Json::Value(thumbnail.problem);
    done_.append(value);
  }

  void setAside(const SampleItem& item, const std::string& reason) override {
    Json::Value value = toJson(item);
    value["reason"] = reason;
    setAside_.append(value);
  }

  void postponed(Obstacle obstacle, const std::string& reason) override {
    obstacle_ = obstacle;
    reason_ = reason;
  }

  void signedOut(const std::string& reason) override { reason_ = reason; }

  void endProgress() { progress_.reset(); }

  const Json::Value& done() const { return done_; }
  const Json::Value& setAside() const { return setAside_; }
  Obstacle obstacle() const { return obstacle_; }
  const std::string& reason() const { return reason_; }

 private:
  void show(const std::string& title) {
    if (progress_) {
      const std::size_t finished = done_.size() + setAside_.size();
      progress_->say(progressBar(finished, finished + left_, title));
    }
  }

  std::optional<Spinner> progress_;
  std::size_t left_ = 0;
  Json::Value done_{Json::arrayValue};
  Json::Value setAside_{Json::arrayValue};
  Obstacle obstacle_ = Obstacle::Network;
  std::string reason_;
};

// --- The work ----------------------------------------------------------------------------------

void requireHeld(const WorkerLock& lock) {
  switch (lock.state()) {
    case WorkerLock::State::Held:
      return;
    case WorkerLock::State::Busy:
      throw Failure(kLocalFailure,
                    std::string("the background application or another \"sample work\" is already "
                                "running: it has locked ") +
                        sample_app::kWorkerLockPath,
                    "Wait until \"bookstore sample list\" shows an empty queue");
    case WorkerLock::State::Failed:
      break;
  }
  throw Failure(kLocalFailure, std::string("cannot lock ") + sample_app::kWorkerLockPath,
                "See the log lines above, and remove what is in place of that file");
}

// A worker that has drained the queue keeps the queue's lock, so that a program that adds an item
// waits. The worker's lock is released first: the application that this program starts gets it.
Worker::End workThrough(const Context& context, sample_app::Waiter& waiter, Report& report) {
  Worker worker(context.storage, waiter, report, std::chrono::milliseconds(0), std::nullopt);
  const WorkerLock lock;
  requireHeld(lock);
  return worker.run();
}

// --- What is shown -----------------------------------------------------------------------------

void printForPrograms(Output& output, const Report& report, std::size_t left) {
  Json::Value document;
  document["done"] = report.done();
  document["setAside"] = report.setAside();
  document["left"] = static_cast<Json::UInt64>(left);
  output.printJson(document);
}

void printRows(Output& output, const std::vector<std::string>& titles, const Json::Value& items,
               const std::vector<std::string>& members) {
  Table table(titles);
  for (const Json::Value& item : items) {
    std::vector<std::string> row;
    row.reserve(members.size());
    for (const std::string& member : members) {
      row.push_back(item[member].asString());
    }
    table.addRow(row);
  }
  output.print(table);
}

void printForPeople(Output& output, const Report& report, std::size_t left) {
  if (!report.done().empty()) {
    printRows(output, {"TITLE", "AUTHOR", "PRICE", "BOOK"}, report.done(),
              {"name", "author", "price", "bookId"});
    output.print("\n");
  }
  if (!report.setAside().empty()) {
    printRows(output, {"SET ASIDE", "FILE", "REASON"}, report.setAside(),
              {"bookId", "sampleFilePath", "reason"});
    output.print("\n");
  }
  if (left == 0) {
    output.print("The queue is empty\n");
  }
}

// Printed also when the work failed: a program needs to know what was done.
void print(Output& output, const Report& report, std::size_t left) {
  if (output.isJson()) {
    printForPrograms(output, report, left);
  } else {
    printForPeople(output, report, left);
  }
}

// --- How it ended ------------------------------------------------------------------------------

ExitCode codeFor(Obstacle obstacle) {
  switch (obstacle) {
    case Obstacle::Network:
      return kTransferFailed;
    case Obstacle::Server:
      return kBadStatus;
    case Obstacle::Files:
      break;
  }
  return kLocalFailure;
}

void requireDrained(Worker::End end, const Report& report, std::size_t left) {
  const std::string stay = "; samples left in the queue: " + std::to_string(left);
  switch (end) {
    case Worker::End::Drained:
      return;
    case Worker::End::Postponed:
      throw Failure(codeFor(report.obstacle()), report.reason() + stay,
                    "Fix the cause, and run \"bookstore sample work\" again; -v shows more");
    case Worker::End::SignedOut:
      throw Failure(kNoSession, report.reason() + stay,
                    "Run \"bookstore sign-in\", then \"bookstore sample work\"");
    case Worker::End::Stopped:  // only when the process ignores the signal
      throw Failure(kLocalFailure, "stopped by a signal" + stay,
                    "Run \"bookstore sample work\" again");
  }
}

// Throws base::DryRun, as every request of a dry run does.
void showFirstRequest(const Context& context) {
  const SampleItem item = oldestSample();
  std::string reason = sample_app::locateSample(item.sampleFilePath).problem;
  if (reason.empty()) {
    reason = MetadataSource(context.storage).find(item.bookId).reason;
  }
  throw Failure(context.storage->isLoggedIn() ? kUsage : kNoSession,
                "the oldest sample causes no request: " + reason,
                "Check the sample with \"bookstore sample next\"");
}

}  // namespace

void runSampleWork(Context& context) {
  if (context.arguments.has("--dry-run")) {
    showFirstRequest(context);
  }
  // A signal takes effect after the report is printed.
  sample_app::SignalWaiter waiter({SIGHUP, SIGINT, SIGTERM});
  Report report(context);
  const Worker::End end = workThrough(context, waiter, report);
  report.endProgress();
  const std::size_t left = queuedSamples().size();
  print(context.output, report, left);
  context.output.flush();
  if (end == Worker::End::Stopped) {
    context.output.note("stopped; samples left in the queue: " + std::to_string(left));
  }
  requireDrained(end, report, left);
}

}  // namespace bookstore
