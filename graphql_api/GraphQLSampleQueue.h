// The queue of requested book samples: a small file to which several programs append, and which a
// background application processes. Only one thread at a time may use an object. Objects, in one
// process or in several, exclude each other with an advisory lock on the file.

#ifndef GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_
#define GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace graphql {

// The interface to the queue file /tmp/sample.queue, which contains the items one after the other,
// oldest first. Every change rewrites the whole file: the new content is complete in memory before
// the file is truncated, and is then written at once.
//
// A member that takes the lock waits while another object has it, and releases it before it
// returns. Failures of the file itself are not reported. A file that exists but cannot be read is
// left unchanged, and counts as an empty queue. An empty device in place of the file is an empty
// queue, too. Only the write after the truncation can lose items: when the process is killed during
// the write, or when the disk is full or fails. A damaged item is logged; the items before it are
// kept. The members themselves throw nothing. They pass on exceptions of the platform's string
// encoding; the lock is then released and the file unchanged.
//
// The first program that locks the file creates it, with the permissions that its umask leaves. To
// share the queue between users, the owner of /tmp creates the file at start-up with mode 0666: if
// the kernel protects files in folders such as /tmp (fs.protected_regular), programs cannot open
// the file of another user for the lock, whatever its mode.
class GraphQLSampleQueue {
 public:
  // One request.
  struct SampleItem {
    std::string bookId;          // the book; any bytes, may be empty
    std::string sampleFilePath;  // the path of the sample's file, as requested
  };

  GraphQLSampleQueue() = default;
  // Releases the lock if this object still has it.
  ~GraphQLSampleQueue();

  GraphQLSampleQueue(const GraphQLSampleQueue&) = delete;
  GraphQLSampleQueue& operator=(const GraphQLSampleQueue&) = delete;

  // Takes the exclusive lock of the queue file, and creates an empty file if it is missing.
  // Releases a lock of this object first, then waits while another object, in this process or
  // another one, has the lock. Returns 0; or 1, without the lock, when the file cannot be opened
  // (logged with errno) or locked (not logged; also after a signal).
  int lockSampleQueueFile();

  // Releases the lock if this object has it. Always returns -1.
  int unlockSampleQueueFile();

  // Appends an item; the queue may contain the same book several times. Copies both texts. Does
  // nothing when the lock cannot be taken (logged) or the file cannot be read (not logged).
  void addSample(const std::string& bookId, const std::string& sampleFilePath);

  // Removes the oldest item with exactly this `bookId`, and rewrites the file even if no item
  // matches. Continues without the lock when it cannot be taken. Does nothing when the file cannot
  // be read. Always returns 1.
  int removeSample(const std::string& bookId);

  // Returns the oldest item, which stays in the queue. Returns an item with two empty texts when
  // the queue is empty, or when it cannot be read (logged like a damaged item). Returns the
  // readable part of a damaged item. Continues without the lock when it cannot be taken.
  SampleItem getNextSample();

  // Replaces the content of the file by `items`, without taking the lock. An item that cannot be
  // encoded is logged and left out. When the file cannot be opened for writing, it is unchanged and
  // every item is logged. Always returns 0.
  int serializeSampleItems(const std::vector<SampleItem>& items);

  // Appends every item of the file to `*items`, without taking the lock. A damaged item is
  // appended, too: texts that could not be read keep the values of the item before. Always returns
  // 0.
  int deserializeSampleItems(std::vector<SampleItem>* items);

  // Writes one item to `out`. Returns 0, or -1 when a text could not be encoded, which is logged.
  int serializeSampleItem(const SampleItem& item, std::ostream& out);

  // Reads one item from `in` into `*item`. Returns 0, or -1 when a text could not be decoded, which
  // is logged; the item then has the texts that were read.
  int deserializeSampleItem(std::istream& in, SampleItem* item);

 private:
  int fd_ = -1;  // the locked queue file; -1 without the lock
};

}  // namespace graphql

#endif  // GRAPHQL_API_GRAPHQLSAMPLEQUEUE_H_
