// Many processes at one queue.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <random>
#include <thread>

#include <gmock/gmock.h>

#include "base/WholeFile.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "tests/support/SampleQueueFile.h"

using graphql::GraphQLSampleQueue;
using support::kQueuePath;
using ::testing::SizeIs;

namespace {

const char kTaken[] = "/tmp/taken";

constexpr int kMostAdders = 8;

// What the processes of a test tell each other.
struct Board {
  volatile int added[kMostAdders];  // how many of its items each adder has added
  volatile bool isOver;             // no adder is left
};

class QueueStressTest : public ::testing::Test {
 protected:
  QueueStressTest()
      : board_(static_cast<Board*>(::mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE,
                                          MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    clear();
  }
  ~QueueStressTest() override { ::munmap(board_, sizeof(Board)); }

  void clear() {
    support::removeQueue();
    std::filesystem::remove(kTaken);
    *board_ = Board();
  }

  static pid_t start(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
      work();
      ::_exit(0);
    }
    return child;
  }

  // Waits for a process that ends by itself.
  static void join(pid_t child) {
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }

  pid_t startAdder(int number, int count) {
    return start([=] {
      for (int index = 0; index < count; ++index) {
        GraphQLSampleQueue().addSample(std::to_string(number) + "-" + std::to_string(index),
                                       "/books/" + std::to_string(index));
        board_->added[number] = index + 1;
      }
    });
  }

  // Takes items until the queue is empty with no adder left, and writes down which.
  pid_t startTaker() {
    return start([this] {
      for (bool wasOver = false; takeOne() || !wasOver;) {
        wasOver = board_->isOver;
      }
    });
  }

  // Looking and removing are two steps: takers keep each other out between them. False when the
  // queue is empty.
  static bool takeOne() {
    const base::FileLock takers("/tmp/takers");
    const GraphQLSampleQueue::SampleItem item = GraphQLSampleQueue().getNextSample();
    if (item.bookId.empty()) {
      return false;
    }
    GraphQLSampleQueue().removeSample(item.bookId);
    std::ofstream(kTaken, std::ios::app) << item.bookId << "\n";
    return true;
  }

  // The indexes that were taken of each adder's items, in their order. Anything else that stood in
  // the queue is a failure.
  std::map<int, std::vector<int>> taken() {
    std::map<int, std::vector<int>> indexes;
    std::ifstream in(kTaken);
    for (std::string line; std::getline(in, line);) {
      int number = -1;
      int index = -1;
      EXPECT_EQ(std::sscanf(line.c_str(), "%d-%d", &number, &index), 2) << line;
      indexes[number].push_back(index);
    }
    return indexes;
  }

  Board* const board_;
};

std::vector<int> upTo(int count) {
  std::vector<int> all;
  for (int index = 0; index < count; ++index) {
    all.push_back(index);
  }
  return all;
}

}  // namespace

TEST_F(QueueStressTest, EveryItemIsTakenExactlyOnceInTheOrderOfItsAdder) {
  constexpr int kItems = 500;
  std::vector<pid_t> adders;
  for (int number = 0; number < kMostAdders; ++number) {
    adders.push_back(startAdder(number, kItems));
  }
  const pid_t takers[] = {startTaker(), startTaker()};
  std::for_each(adders.begin(), adders.end(), join);
  board_->isOver = true;
  std::for_each(std::begin(takers), std::end(takers), join);
  const auto found = taken();
  EXPECT_THAT(found, SizeIs(kMostAdders));
  for (const auto& [number, indexes] : found) {
    EXPECT_EQ(indexes, upTo(kItems)) << "adder " << number;
  }
  EXPECT_EQ(std::filesystem::file_size(kQueuePath), 0U);
}

// The file is rewritten whole: an adder that dies between emptying and writing it takes what was
// waiting with it. That is counted here, and cannot be asserted; that all goes on, and that what is
// left can be read, can.
TEST_F(QueueStressTest, AKilledAdderHoldsNobodyUpAndLeavesAReadableQueue) {
  constexpr int kRounds = 100;
  constexpr int kAdders = 4;
  constexpr int kItems = 12;
  const unsigned int seed = std::random_device()();
  std::mt19937 random(seed);
  int added = 0;
  int lost = 0;
  int twice = 0;
  int roundsWithLoss = 0;
  for (int round = 0; round < kRounds; ++round) {
    clear();
    std::vector<pid_t> adders;
    for (int number = 0; number < kAdders; ++number) {
      adders.push_back(startAdder(number, kItems));
    }
    const pid_t taker = startTaker();
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    ::kill(adders.back(), SIGKILL);
    ::waitpid(adders.back(), nullptr, 0);
    adders.pop_back();
    std::for_each(adders.begin(), adders.end(), join);
    board_->isOver = true;
    join(taker);
    auto found = taken();
    int lostNow = 0;
    for (int number = 0; number < kAdders; ++number) {
      std::vector<int>& indexes = found[number];
      EXPECT_TRUE(std::is_sorted(indexes.begin(), indexes.end())) << "adder " << number;
      const auto last = std::unique(indexes.begin(), indexes.end());
      twice += static_cast<int>(indexes.end() - last);
      // An item may be in the queue whose adder died before it could say so.
      lostNow += std::max(0, board_->added[number] - static_cast<int>(last - indexes.begin()));
      added += board_->added[number];
    }
    lost += lostNow;
    roundsWithLoss += lostNow > 0 ? 1 : 0;
  }
  std::cout << kRounds << " kills (seed " << seed << "): of " << added << " items " << lost
            << " were lost, in " << roundsWithLoss << " rounds; " << twice << " were taken twice\n";
  RecordProperty("lost", lost);
}
