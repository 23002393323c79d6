#include "graphql_api/GraphQLSampleQueue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>

#include <orvane/utilities/SerializationUtils.h>

#include "graphql_api/Log.h"

using orvane::utilities::SerializationUtils;

namespace graphql {

namespace {

const std::string kQueuePath = "/tmp/sample.queue";

// Drops the lock of a queue at the end of a scope, also when something throws.
class Unlocker {
 public:
  explicit Unlocker(GraphQLSampleQueue& queue) : queue_(queue) {}
  ~Unlocker() { queue_.unlockSampleQueueFile(); }

  Unlocker(const Unlocker&) = delete;
  Unlocker& operator=(const Unlocker&) = delete;

 private:
  GraphQLSampleQueue& queue_;
};

// True when another byte can be read; it stays to be read.
bool hasMore(std::istream& in) {
  if (in.get() == std::istream::traits_type::eof()) {
    return false;
  }
  in.unget();
  return true;
}

// The whole file; nothing when it cannot be read.
std::string readFile() {
  std::ifstream file(kQueuePath, std::ios::binary);
  std::string content;
  std::vector<char> piece(65536);
  do {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    content.append(piece.data(), static_cast<std::size_t>(file.gcount()));
  } while (file);
  return content;
}

}  // namespace

GraphQLSampleQueue::~GraphQLSampleQueue() {
  unlockSampleQueueFile();
}

int GraphQLSampleQueue::lockSampleQueueFile() {
  unlockSampleQueueFile();
  fd_ = ::open(kQueuePath.c_str(), O_RDWR | O_CREAT, 0777);
  if (fd_ == -1) {
    GRAPHQL_LOG(kLogFailure, "Condition: \"-1 != fd_\", return(\"1\")]Open failed with %d", errno);
    return 1;
  }
  if (::flock(fd_, LOCK_EX) != 0) {
    unlockSampleQueueFile();
    return 1;
  }
  return 0;
}

int GraphQLSampleQueue::unlockSampleQueueFile() {
  if (fd_ != -1) {
    ::close(fd_);
    fd_ = -1;
  }
  return fd_;
}

void GraphQLSampleQueue::addSample(const std::string& bookId, const std::string& sampleFilePath) {
  if (lockSampleQueueFile() != 0) {
    GRAPHQL_LOG(kLogFailure, "Condition: \"lockSampleQueueFile()\", return]");
    return;
  }
  const Unlocker unlocker(*this);
  std::vector<SampleItem> items;
  deserializeSampleItems(&items);
  items.push_back({bookId, sampleFilePath});
  serializeSampleItems(items);
}

int GraphQLSampleQueue::removeSample(const std::string& bookId) {
  // Without the lock, too: the worker must get on with the queue.
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  std::vector<SampleItem> items;
  deserializeSampleItems(&items);
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const SampleItem& item) { return item.bookId == bookId; });
  if (found != items.end()) {
    items.erase(found);
  }
  serializeSampleItems(items);
  return 1;
}

GraphQLSampleQueue::SampleItem GraphQLSampleQueue::getNextSample() {
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  SampleItem item;
  std::ifstream in(kQueuePath, std::ios::binary);
  if (hasMore(in)) {
    deserializeSampleItem(in, &item);
  }
  return item;
}

int GraphQLSampleQueue::serializeSampleItems(const std::vector<SampleItem>& items) {
  // The content is built first: between truncation and write a killed process leaves the file
  // short.
  std::string bytes;
  for (const SampleItem& item : items) {
    std::ostringstream encoded;
    if (serializeSampleItem(item, encoded) == 0) {
      bytes += encoded.str();
    }
  }
  std::ofstream file(kQueuePath, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return 0;
}

int GraphQLSampleQueue::deserializeSampleItems(std::vector<SampleItem>* items) {
  std::istringstream in(readFile());
  SampleItem item;
  while (hasMore(in)) {
    const auto start = in.tellg();
    const int err = deserializeSampleItem(in, &item);
    items->push_back(item);
    // A decoder that gives up without reading on would be asked for the same bytes for ever.
    if (err != 0 && in.tellg() == start) {
      break;
    }
  }
  return 0;
}

int GraphQLSampleQueue::serializeSampleItem(const SampleItem& item, std::ostream& out) {
  int err = SerializationUtils::SerializeString(item.bookId, out);
  if (err == 0) {
    err = SerializationUtils::SerializeString(item.sampleFilePath, out);
  }
  if (err != 0) {
    GRAPHQL_LOG(kLogFailure, "Condition: \"0 == err\", return(\"-1\")]");
    return -1;
  }
  return 0;
}

int GraphQLSampleQueue::deserializeSampleItem(std::istream& in, SampleItem* item) {
  int err = SerializationUtils::DeserializeString(in, &item->bookId);
  if (err == 0) {
    err = SerializationUtils::DeserializeString(in, &item->sampleFilePath);
  }
  if (err != 0) {
    GRAPHQL_LOG(kLogFailure, "Condition: \"0 == err\", return(\"-1\")]");
    return -1;
  }
  return 0;
}

}  // namespace graphql
