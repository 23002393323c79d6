// A worker that is killed at any system call of a removal loses no other item.

#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "graphql_api/GraphQLSampleQueue.h"
#include "sample_app/WorkQueue.h"
#include "tests/end_to_end/StoreService.h"
#include "tests/platform/host/TemporaryRoot.h"

using sample_app::WorkQueue;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::Gt;

namespace {

const char kTrace[] = "/tmp/trace";

// One system call of a removal: its name, and which call of that name in the process it is.
struct SystemCall {
  std::string name;
  int number;
};

class KilledRemovalTest : public ::testing::Test {
 protected:
  // A folder that has to be made would add calls to the first removal.
  KilledRemovalTest() { root_.put(sample_app::kJournalPath, ""); }

  void queueHoldsThree() {
    graphql::GraphQLSampleQueue().serializeSampleItems({{"b", "/1"}, {"b", "/2"}, {"c", "/3"}});
    std::filesystem::remove(root_.at(sample_app::kJournalPath));
  }

  static std::vector<std::string> queued() {
    std::vector<sample_app::SampleItem> items;
    graphql::GraphQLSampleQueue().deserializeSampleItems(&items);
    std::vector<std::string> texts;
    for (const sample_app::SampleItem& item : items) {
      texts.push_back(item.bookId + item.sampleFilePath);
    }
    return texts;
  }

  // The exit status; 128 and the signal's number for a process that was killed.
  static int removeUnderTracer(const std::vector<std::string>& options) {
    std::vector<std::string> command = {STRACE, "-qq"};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(OLDEST_REMOVER);
    int status = -1;
    end_to_end::outputOf(command, &status);
    return status;
  }

  static std::vector<SystemCall> callsOfARemoval() {
    EXPECT_EQ(removeUnderTracer({"-o", kTrace}), 0);
    std::ifstream lines(kTrace);
    const std::regex call("^([a-z0-9_]+)\\(");
    std::map<std::string, int> counts;
    std::vector<SystemCall> calls;
    for (std::string line; std::getline(lines, line);) {
      std::smatch match;
      if (std::regex_search(line, match, call)) {
        const SystemCall found = {match[1], ++counts[match[1]]};
        if (counts["getppid"] > 0) {
          calls.push_back(found);
        }
      }
    }
    return calls;
  }

  static std::vector<std::string> killAt(const SystemCall& call) {
    return {"-o", kTrace, "-e",
            "inject=" + call.name + ":signal=KILL:when=" + std::to_string(call.number)};
  }

  host_tests::TemporaryRoot root_;
  // The leak checker of a sanitized build cannot work beside a tracer.
  host_tests::ScopedSetting noLeakCheck_{"ASAN_OPTIONS", "detect_leaks=0"};
};

}  // namespace

TEST_F(KilledRemovalTest, NoSystemCallIsTheWrongOneToBeKilledAt) {
  queueHoldsThree();
  const std::vector<SystemCall> calls = callsOfARemoval();
  ASSERT_THAT(calls.size(), Gt(20U));
  int recovered = 0;
  for (const SystemCall& call : calls) {
    if (call.name == "exit_group") {
      continue;
    }
    queueHoldsThree();
    ASSERT_EQ(removeUnderTracer(killAt(call)), 128 + SIGKILL) << call.name << call.number;
    const auto left = queued();
    ASSERT_TRUE(WorkQueue().recover());
    // The item is still there or not: the others have to be.
    EXPECT_THAT(queued(), AnyOf(ElementsAre("b/1", "b/2", "c/3"), ElementsAre("b/2", "c/3")))
        << call.name << call.number;
    recovered += left == queued() ? 0 : 1;
  }
  // Without the journal it would have been lost there.
  EXPECT_GT(recovered, 0);
}
