// The queue of samples as tests fill and read it. Its path is fixed: use it in a private /tmp only.

#ifndef TESTS_SUPPORT_SAMPLEQUEUEFILE_H_
#define TESTS_SUPPORT_SAMPLEQUEUEFILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "graphql_api/GraphQLSampleQueue.h"

namespace support {

constexpr char kQueuePath[] = "/tmp/sample.queue";

inline void removeQueue() {
  std::filesystem::remove_all(kQueuePath);
}

inline void queueHolds(const std::vector<graphql::GraphQLSampleQueue::SampleItem>& items) {
  graphql::GraphQLSampleQueue().serializeSampleItems(items);
}

// The items as "book@path", the oldest first.
inline std::vector<std::string> queued(graphql::GraphQLSampleQueue& queue) {
  std::vector<graphql::GraphQLSampleQueue::SampleItem> items;
  queue.deserializeSampleItems(&items);
  std::vector<std::string> texts;
  for (const auto& item : items) {
    texts.push_back(item.bookId + "@" + item.sampleFilePath);
  }
  return texts;
}

// Without the lock, which the caller may hold.
inline std::vector<std::string> queued() {
  graphql::GraphQLSampleQueue queue;
  return queued(queue);
}

// Under the lock, for a queue that another process works on.
inline std::vector<std::string> queuedUnderLock() {
  graphql::GraphQLSampleQueue queue;
  queue.lockSampleQueueFile();
  return queued(queue);  // the queue's end drops the lock
}

}  // namespace support

#endif  // TESTS_SUPPORT_SAMPLEQUEUEFILE_H_
