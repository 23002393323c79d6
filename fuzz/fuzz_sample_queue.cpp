// Any bytes as the queue of samples, in a private /tmp: whatever the file contains, a new item is
// added at the end, and written items are read back unchanged.

#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "tests/support/PrivateTmp.h"

namespace {

using graphql::GraphQLSampleQueue;
using Item = GraphQLSampleQueue::SampleItem;

bool isSame(const Item& one, const Item& other) {
  return one.bookId == other.bookId && one.sampleFilePath == other.sampleFilePath;
}

std::vector<Item> items() {
  std::vector<Item> all;
  GraphQLSampleQueue().deserializeSampleItems(&all);
  return all;
}

void addBehind(const std::string& bytes) {
  std::ofstream("/tmp/sample.queue", std::ios::binary | std::ios::trunc) << bytes;
  const std::vector<Item> before = items();
  const Item added{"added", "/mnt/ext1/added.sample"};
  GraphQLSampleQueue().addSample(added.bookId, added.sampleFilePath);
  const std::vector<Item> after = items();
  FUZZ_REQUIRE(after.size() == before.size() + 1);
  for (std::size_t i = 0; i < before.size(); ++i) {
    FUZZ_REQUIRE(isSame(after[i], before[i]));
  }
  FUZZ_REQUIRE(isSame(after.back(), added));
  FUZZ_REQUIRE(isSame(GraphQLSampleQueue().getNextSample(), after.front()));
}

// The bytes, cut into pieces of five.
void writeAndRead(const std::string& bytes) {
  std::vector<Item> written;
  for (std::size_t i = 0; i < bytes.size(); i += 5) {
    written.push_back({bytes.substr(i, 2), bytes.substr(std::min(i + 2, bytes.size()), 3)});
  }
  GraphQLSampleQueue().serializeSampleItems(written);
  const std::vector<Item> read = items();
  FUZZ_REQUIRE(read.size() == written.size());
  for (std::size_t i = 0; i < read.size(); ++i) {
    FUZZ_REQUIRE(isSame(read[i], written[i]));
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  try {
    support::enterPrivateTmp({std::filesystem::current_path()});  // the folder of the inputs
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << "\n";
    std::exit(1);
  }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  addBehind(bytes);
  writeAndRead(bytes);
  return 0;
}
