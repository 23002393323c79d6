// The queue of book samples that a user asked for: a small file that several programs append to and
// a background application works through. An object is used by one thread at a time; objects, in
// one process or in several, keep each other out by an advisory lock on the file.

#ifndef GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_
#define GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace graphql {

// The whole interface to the queue file /tmp/sample.queue, which holds the items one after the
// other, oldest first. The file is rewritten whole by every change: the new content is complete in
// memory before the file is truncated, and is then written at once.
//
// A member that takes the lock waits as long as another object holds it, and drops it before it
// returns. Failures of the file itself are not reported. A file that exists but cannot be read is
// left unchanged; to the caller it is an empty queue. So is an empty device in its place. Items can
// only be lost by the write that follows the truncation: when the process is killed there, or when
// the disk is full or fails. A damaged item is logged; the items before it are kept. No member
// throws an exception of its own; what the platform's string encoding throws reaches the caller,
// the lock dropped and the file unchanged.
//
// The first program that locks the file creates it, with the permissions that its umask leaves.
// Programs of several users share the queue when the owner of /tmp creates it at start-up with mode
// 0666: where the kernel protects files in folders such as /tmp (fs.protected_regular), no one
// else's file may be opened in the way that the lock needs, whatever its mode.
class GraphQLSampleQueue {
 public:
  // One request.
  struct SampleItem {
    std::string bookId;          // the book; any bytes, also none
    std::string sampleFilePath;  // the sample's file, as the requester named it
  };

  GraphQLSampleQueue() = default;
  // Drops a lock that is still held.
  ~GraphQLSampleQueue();

  GraphQLSampleQueue(const GraphQLSampleQueue&) = delete;
  GraphQLSampleQueue& operator=(const GraphQLSampleQueue&) = delete;

  // Takes the exclusive lock of the queue file, which is created empty when missing. Waits as long
  // as another object, in this process or another one, holds it; a lock of this object is dropped
  // first. Returns 0; or 1, holding nothing, when the file cannot be opened (logged with errno) or
  // locked (not logged).
  int lockSampleQueueFile();

  // Drops the lock, if it is held. Returns -1 in any case.
  int unlockSampleQueueFile();

  // Appends an item; the same book may stand in the queue several times. Copies both texts. Does
  // nothing when the lock cannot be taken, which is logged, or when the file cannot be read, which
  // is not.
  void addSample(const std::string& bookId, const std::string& sampleFilePath);

  // Removes the oldest item with exactly this `bookId` and rewrites the file, also when there is
  // none. Goes on without the lock when that cannot be taken; does nothing when the file cannot be
  // read. Returns 1.
  int removeSample(const std::string& bookId);

  // The oldest item, which stays in the queue; an item with both texts empty when the queue is
  // empty, or cannot be read, which is logged like a damaged item. Of a damaged item what could be
  // read. Goes on without the lock when that cannot be taken.
  SampleItem getNextSample();

  // Replaces the content of the file by `items`, without taking the lock. An item that cannot be
  // encoded is logged and left out. When the file cannot be opened for writing it stays unchanged,
  // and every item is logged. Returns 0.
  int serializeSampleItems(const std::vector<SampleItem>& items);

  // Appends every item of the file to `*items`, without taking the lock. Of a damaged item what
  // could be read is appended, too, over what the item before it held. Returns 0.
  int deserializeSampleItems(std::vector<SampleItem>* items);

  // Writes one item to `out`. Returns 0, or -1 when a text could not be encoded, which is logged.
  int serializeSampleItem(const SampleItem& item, std::ostream& out);

  // Reads one item from `in` into `*item`. Returns 0, or -1 when a text could not be decoded, which
  // is logged; the item then holds what was read.
  int deserializeSampleItem(std::istream& in, SampleItem* item);

 private:
  int fd_ = -1;  // the locked queue file; -1 while the lock is not held
};

}  // namespace graphql

#endif  // GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_
