#include "graphql_api/GraphQLSampleQueue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <streambuf>
#include <utility>

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

// A stream's view of bytes in memory, which stay where they are.
class BytesBuffer : public std::streambuf {
 public:
  explicit BytesBuffer(std::string& bytes) { setg(&bytes[0], &bytes[0], &bytes[0] + bytes.size()); }

  std::size_t position() const { return static_cast<std::size_t>(gptr() - eback()); }

 protected:
  std::streamsize xsgetn(char* bytes, std::streamsize count) override {
    const std::streamsize taken = std::min<std::streamsize>(count, egptr() - gptr());
    std::memcpy(bytes, gptr(), static_cast<std::size_t>(taken));
    setg(eback(), gptr() + taken, egptr());
    return taken;
  }
  // Decoders may look for their position and move it, as they may in a file.
  pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                   std::ios_base::openmode which) override {
    const off_type base = from == std::ios_base::beg   ? 0
                          : from == std::ios_base::cur ? gptr() - eback()
                                                       : egptr() - eback();
    return seekpos(base + offset, which);
  }
  pos_type seekpos(pos_type position, std::ios_base::openmode) override {
    const off_type offset = position;
    if (offset < 0 || offset > egptr() - eback()) {
      return {off_type{-1}};
    }
    setg(eback(), eback() + offset, egptr());
    return position;
  }
};

// Where an item stands in the bytes of the file.
struct Span {
  std::size_t begin;
  std::size_t end;
  bool isWhole;  // false: damaged, and the item is what could be read
};

// Calls `visit` with each item in `bytes` and its span, the oldest first. Returns where the last
// one ends.
template <typename Visit>
std::size_t visitItems(GraphQLSampleQueue& queue, std::string& bytes, Visit visit) {
  BytesBuffer buffer(bytes);
  std::istream in(&buffer);
  GraphQLSampleQueue::SampleItem item;
  while (in && buffer.sgetc() != std::streambuf::traits_type::eof()) {
    const std::size_t begin = buffer.position();
    const bool isWhole = queue.deserializeSampleItem(in, &item) == 0;
    visit(item, Span{begin, buffer.position(), isWhole});
    // A decoder that gives up without reading on would be asked for the same bytes for ever.
    if (!isWhole && buffer.position() == begin) {
      break;
    }
  }
  return buffer.position();
}

// The encoded items, one after the other, without those that cannot be encoded.
std::string encode(GraphQLSampleQueue& queue, const GraphQLSampleQueue::SampleItem* items,
                   std::size_t count) {
  std::ostringstream encoded;
  for (const auto* item = items; item != items + count; ++item) {
    const auto begin = encoded.tellp();
    if (queue.serializeSampleItem(*item, encoded) != 0) {
      encoded.clear();
      encoded.seekp(begin);
    }
  }
  std::string bytes = encoded.str();
  bytes.resize(static_cast<std::size_t>(encoded.tellp()));
  return bytes;
}

// `bytes` without the first item of the book `unwanted`, if there is one. What was read whole keeps
// its bytes, for encoding thousands of items anew takes longer than reading and writing the file.
std::string keepItems(GraphQLSampleQueue& queue, std::string bytes, const std::string* unwanted) {
  std::string kept;
  std::size_t copied = 0;  // of `bytes`: what stands before is in `kept`, or is not kept
  const std::size_t end =
      visitItems(queue, bytes, [&](const GraphQLSampleQueue::SampleItem& item, const Span& span) {
        const bool isUnwanted = unwanted != nullptr && item.bookId == *unwanted;
        if (span.isWhole && !isUnwanted) {
          return;
        }
        kept.append(bytes, copied, span.begin - copied);
        if (isUnwanted) {
          unwanted = nullptr;
        } else {
          kept += encode(queue, &item, 1);
        }
        copied = span.end;
      });
  bytes.resize(end);
  return copied == 0 ? std::move(bytes) : kept.append(bytes, copied, std::string::npos);
}

// The queue file, open for a scope. Opening does not wait, should a pipe be in its place.
class QueueFile {
 public:
  explicit QueueFile(int flags)
      : descriptor_(::open(kQueuePath.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666)) {}
  ~QueueFile() {
    if (descriptor_ != -1) {
      ::close(descriptor_);
    }
  }

  QueueFile(const QueueFile&) = delete;
  QueueFile& operator=(const QueueFile&) = delete;

  // The size of a regular file; none for what is none or cannot be opened.
  std::optional<std::size_t> size() const {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
      return std::nullopt;
    }
    return static_cast<std::size_t>(status.st_size);
  }

  // Calls `transfer`, which is read() or write(), until all of `bytes` is done or it fails. Returns
  // how many bytes were done.
  template <typename Transfer, typename Byte>
  std::size_t forAll(Transfer transfer, Byte* bytes, std::size_t size) const {
    std::size_t done = 0;
    ssize_t count = 0;
    while (done < size && (count = transfer(descriptor_, bytes + done, size - done)) > 0) {
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

 private:
  const int descriptor_;
};

// The whole file, with room for `room` bytes more; nothing when it cannot be read.
std::string readFile(std::size_t room = 0) {
  const QueueFile file(O_RDONLY);
  std::string bytes;
  const std::size_t size = file.size().value_or(0);
  bytes.reserve(size + room);
  bytes.resize(size);
  bytes.resize(file.forAll(::read, &bytes[0], bytes.size()));
  return bytes;
}

// Replaces the content of the file. It comes whole and goes out at once: between truncation and
// write a killed process leaves the file short.
void writeFile(const std::string& bytes) {
  QueueFile(O_WRONLY | O_CREAT | O_TRUNC).forAll(::write, bytes.data(), bytes.size());
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
  const SampleItem item = {bookId, sampleFilePath};
  const std::string added = encode(*this, &item, 1);
  writeFile(keepItems(*this, readFile(added.size()), nullptr) += added);
}

int GraphQLSampleQueue::removeSample(const std::string& bookId) {
  // Without the lock, too: the worker must get on with the queue.
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  writeFile(keepItems(*this, readFile(), &bookId));
  return 1;
}

GraphQLSampleQueue::SampleItem GraphQLSampleQueue::getNextSample() {
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  SampleItem item;
  std::ifstream in;  // the file may be long, and one item is wanted
  if (QueueFile(O_RDONLY).size()) {
    in.open(kQueuePath, std::ios::binary);
  } else {
    in.setstate(std::ios::failbit);
  }
  in.peek();
  if (!in.eof()) {
    deserializeSampleItem(in, &item);
  }
  return item;
}

int GraphQLSampleQueue::serializeSampleItems(const std::vector<SampleItem>& items) {
  writeFile(encode(*this, items.data(), items.size()));
  return 0;
}

int GraphQLSampleQueue::deserializeSampleItems(std::vector<SampleItem>* items) {
  std::string bytes = readFile();
  visitItems(*this, bytes,
             [items](const SampleItem& item, const Span&) { items->push_back(item); });
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
