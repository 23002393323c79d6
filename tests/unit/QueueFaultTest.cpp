// The queue when the kernel refuses a system call of a step: each call in turn, with each error. A
// tracer plays the kernel.

#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "graphql_api/GraphQLSampleQueue.h"
#include "tests/support/PrivateTmp.h"
#include "tests/unit/PlatformTest.h"

using graphql::GraphQLSampleQueue;
using ::testing::AnyOf;
using ::testing::ElementsAre;

namespace {

const char kTrace[] = "/tmp/trace";

// A system call of a step: its name, and the how manieth call of that name in the process it is.
struct Site {
  std::string call;
  int number;
};

class QueueFaultTest : public PlatformTest {
 protected:
  static void queueHoldsTwo() {
    GraphQLSampleQueue().serializeSampleItems({{"b1", "/1"}, {"b2", "/2"}});
  }

  static std::vector<std::string> queued() {
    std::vector<GraphQLSampleQueue::SampleItem> items;
    GraphQLSampleQueue().deserializeSampleItems(&items);
    std::vector<std::string> books;
    for (const auto& item : items) {
      books.push_back(item.bookId);
    }
    return books;
  }

  static int traced(const std::string& step, const std::string& options) {
    // The leak checker of a sanitized build cannot work beside a tracer.
    const std::string command = "ASAN_OPTIONS=detect_leaks=0 " STRACE " -qq -o " +
                                std::string(kTrace) + " " + options + " " QUEUE_STEP " " + step +
                                " 2>/dev/null";
    return std::system(command.c_str());
  }

  // The calls between the marks that touch the queue.
  static std::vector<Site> sites(const std::string& step) {
    EXPECT_EQ(traced(step, ""), 0);
    std::ifstream lines(kTrace);
    const std::regex call("^([a-z0-9_]+)\\(");
    std::map<std::string, int> counts;
    std::vector<Site> found;
    for (std::string line; std::getline(lines, line);) {
      std::smatch match;
      if (std::regex_search(line, match, call)) {
        const Site site = {match[1], ++counts[match[1]]};
        if (counts["getppid"] == 1 && site.call != "getppid") {
          found.push_back(site);
        }
      }
    }
    return found;
  }

  // What is left in the queue has to match `allowed`, whatever fails.
  static void tryEachFault(const std::string& step,
                           const ::testing::Matcher<std::vector<std::string>>& allowed) {
    queueHoldsTwo();
    const std::vector<Site> all = sites(step);
    ASSERT_GE(all.size(), 5U);
    for (const Site& site : all) {
      for (const std::string error : {"EIO", "EMFILE", "EINTR", "EAGAIN", "ENOSPC"}) {
        if (site.call == "write" && error != "EINTR") {
          continue;  // the file is truncated by then: the one write that the header names
        }
        queueHoldsTwo();
        EXPECT_EQ(traced(step, "-e inject=" + site.call + ":error=" + error +
                                   ":when=" + std::to_string(site.number)),
                  0);
        EXPECT_THAT(queued(), allowed) << site.call << site.number << " " << error;
      }
    }
  }
};

}  // namespace

TEST_F(QueueFaultTest, AddingLosesNoItem) {
  tryEachFault("add", AnyOf(ElementsAre("b1", "b2"), ElementsAre("b1", "b2", "new")));
}

TEST_F(QueueFaultTest, RemovingLosesNoOtherItem) {
  tryEachFault("remove", AnyOf(ElementsAre("b1", "b2"), ElementsAre("b2")));
}

TEST_F(QueueFaultTest, TakingTheNextItemLosesNone) {
  tryEachFault("next", ElementsAre("b1", "b2"));
}

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (!::testing::GTEST_FLAG(list_tests)) {
    support::enterPrivateTmp({SOURCE_FOLDER, BUILD_FOLDER});
  }
  return RUN_ALL_TESTS();
}
