// Adds to the queue of samples, with the library over the development host, or with a minimal
// function.
//
// Usage: bench_queue library|bare ITEMS COUNT
// Adds COUNT times to a queue of ITEMS items, after a few additions that are not measured. Prints
// one line of JSON: "nanoseconds", the median time of one addition. Fails if the minimal function
// and the library write different bytes. The queue's path is fixed, so this process has a private
// /tmp, in memory.

#include <algorithm>
#include <chrono>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/queue_bare.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "tests/support/PrivateTmp.h"

namespace {

using graphql::GraphQLSampleQueue;
using Clock = std::chrono::steady_clock;

const char kQueuePath[] = "/tmp/sample.queue";

GraphQLSampleQueue::SampleItem item(std::size_t number) {
  const std::string digits = std::to_string(100000 + number);
  return {"MTA" + digits,
          "/mnt/ext1/Samples/Anna Weiler - Kleine Kunde vom Schnee " + digits + ".sample.epub"};
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

std::string queueOf(std::size_t items) {
  std::vector<GraphQLSampleQueue::SampleItem> all;
  for (std::size_t number = 0; number < items; ++number) {
    all.push_back(item(number));
  }
  GraphQLSampleQueue().serializeSampleItems(all);
  return readFile(kQueuePath);
}

Clock::duration medianOf(std::vector<Clock::duration> durations) {
  const auto middle = durations.begin() + static_cast<std::ptrdiff_t>(durations.size() / 2);
  std::nth_element(durations.begin(), middle, durations.end());
  return *middle;
}

// The queue file before and after one item is added.
struct Contents {
  std::string before;
  std::string after;
};

void addThroughLibrary(const GraphQLSampleQueue::SampleItem& added) {
  GraphQLSampleQueue().addSample(added.bookId, added.sampleFilePath);
}

std::function<void()> additionBy(const std::string& program, std::size_t items,
                                 const Contents& contents) {
  if (program == "library") {
    return [added = item(items)] { addThroughLibrary(added); };
  }
  return [bytes = contents.after.substr(contents.before.size())] {
    if (addBare(kQueuePath, bytes.data(), bytes.size()) != 0) {
      throw std::runtime_error("the minimal function failed to add");
    }
  };
}

Clock::duration measure(const std::string& program, std::size_t items, std::size_t count) {
  Contents contents;
  contents.before = queueOf(items);
  addThroughLibrary(item(items));
  contents.after = readFile(kQueuePath);
  const std::function<void()> add = additionBy(program, items, contents);
  std::vector<Clock::duration> durations;
  const std::size_t warmUps = count / 10 + 1;
  for (std::size_t i = 0; i < warmUps + count; ++i) {
    writeFile(kQueuePath, contents.before);
    const Clock::time_point start = Clock::now();
    add();
    if (i >= warmUps) {
      durations.push_back(Clock::now() - start);
    }
  }
  if (readFile(kQueuePath) != contents.after) {
    throw std::runtime_error("the queue differs from the bytes that the library writes");
  }
  return medianOf(std::move(durations));
}

}  // namespace

int main(int argc, char** argv) try {
  const std::string program = argc == 4 ? argv[1] : "";
  const std::size_t count = argc == 4 ? std::stoul(argv[3]) : 0;
  if ((program != "library" && program != "bare") || count == 0) {
    throw std::invalid_argument("usage: bench_queue library|bare ITEMS COUNT");
  }
  support::enterPrivateTmp();
  const Clock::duration median = measure(program, std::stoul(argv[2]), count);
  std::cout << "{\"nanoseconds\":" << std::chrono::nanoseconds(median).count() << "}\n";
  return 0;
} catch (const std::exception& failure) {
  std::cerr << "bench_queue: " << failure.what() << "\n";
  return 2;
}
