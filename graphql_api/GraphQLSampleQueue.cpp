#include "graphql_api/GraphQLSampleQueue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <utility>

#include <orvane/utilities/SerializationUtils.h>

#include "graphql_api/Log.h"

using orvane::utilities::SerializationUtils;

namespace graphql {

namespace {

const std::string kQueuePath = "/tmp/sample.queue";

// Releases the lock of a queue at the end of a scope, also after an exception.
class Unlocker {
 public:
  explicit Unlocker(GraphQLSampleQueue& queue) : queue_(queue) {}
  ~Unlocker() { queue_.unlockSampleQueueFile(); }

  Unlocker(const Unlocker&) = delete;
  Unlocker& operator=(const Unlocker&) = delete;

 private:
  GraphQLSampleQueue& queue_;
};

// Repeats `call`, a system call, until no signal interrupts it.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

// The queue file, open for a scope. Opening does not block if a pipe is in its place.
class QueueFile {
 public:
  explicit QueueFile(int flags)
      : descriptor_(uninterrupted([flags] {
          return ::open(kQueuePath.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);
        })) {}
  ~QueueFile() {
    if (isOpen()) {
      ::close(descriptor_);
    }
  }

  QueueFile(const QueueFile&) = delete;
  QueueFile& operator=(const QueueFile&) = delete;

  bool isOpen() const { return descriptor_ != -1; }

  // False when the file cannot be read, or is a device with something to read.
  bool readAll(std::string* bytes) const {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0) {
      return false;
    }
    const bool isFile = S_ISREG(status.st_mode);
    bytes->resize(isFile ? static_cast<std::size_t>(status.st_size) : 1);
    std::size_t done = 0;
    const bool succeeded = forAll(::read, &(*bytes)[0], bytes->size(), &done);
    bytes->resize(done);
    return succeeded && (isFile || done == 0);
  }

  // Writes at once: a process that is killed after the truncation leaves the file short.
  void replaceContent(const std::string& bytes) const {
    if (uninterrupted([this] { return ::ftruncate(descriptor_, 0); }) == 0) {
      std::size_t done = 0;
      forAll(::write, bytes.data(), bytes.size(), &done);
    }
  }

 private:
  // Calls `transfer`, which is read() or write(), until all of `bytes` is transferred or a call
  // transfers nothing. False when a call fails.
  template <typename Transfer, typename Byte>
  bool forAll(Transfer transfer, Byte* bytes, std::size_t size, std::size_t* done) const {
    ssize_t count = 1;
    while (count > 0 && *done < size) {
      count = uninterrupted([&] { return transfer(descriptor_, bytes + *done, size - *done); });
      *done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return count >= 0;
  }

  const int descriptor_;
};

// Appends what is written to a string, which a string stream would copy.
class OutputBuffer : public std::streambuf {
 public:
  std::string bytes;

 protected:
  int_type overflow(int_type byte) override {
    bytes += traits_type::to_char_type(byte);
    return byte;
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    bytes.append(text, static_cast<std::size_t>(count));
    return count;
  }
};

// The content of the queue file as a stream, which has failed when the file cannot be read.
class QueueReader {
 public:
  QueueReader() {
    const QueueFile file(O_RDONLY);
    // A missing file can be written without a loss; a file that cannot be read cannot.
    mayBeRewritten_ = !file.isOpen() && errno == ENOENT;
    std::string bytes;
    if (file.isOpen() && file.readAll(&bytes)) {
      mayBeRewritten_ = true;
      stream_.str(bytes);
    } else {
      stream_.setstate(std::ios::failbit);
    }
  }

  std::istream& stream() { return stream_; }
  bool mayBeRewritten() const { return mayBeRewritten_; }

 private:
  std::istringstream stream_;
  bool mayBeRewritten_;
};

// Appends every item of the file to `*items`. False when the file must not be rewritten: it may
// hold items that could not be read.
bool readItems(GraphQLSampleQueue& queue, std::vector<GraphQLSampleQueue::SampleItem>* items) {
  QueueReader reader;
  std::istream& in = reader.stream();
  GraphQLSampleQueue::SampleItem item;
  while (in && in.rdbuf()->sgetc() != std::istream::traits_type::eof()) {
    const std::streamsize left = in.rdbuf()->in_avail();
    const int err = queue.deserializeSampleItem(in, &item);
    items->push_back(item);
    // A decoder that fails without reading would get the same bytes forever.
    if (err != 0 && in.rdbuf()->in_avail() == left) {
      break;
    }
  }
  return reader.mayBeRewritten();
}

// An estimate above what encodings need, so that the buffer does not have to grow.
std::size_t mostEncodedBytes(const std::vector<GraphQLSampleQueue::SampleItem>& items) {
  std::size_t size = 0;
  for (const auto& item : items) {
    size += item.bookId.size() + item.sampleFilePath.size() + 16;
  }
  return size;
}

// The encoded items, one after the other, without those that cannot be encoded.
std::string encode(GraphQLSampleQueue& queue,
                   const std::vector<GraphQLSampleQueue::SampleItem>& items) {
  OutputBuffer buffer;
  buffer.bytes.reserve(mostEncodedBytes(items));
  std::ostream out(&buffer);
  for (const auto& item : items) {
    const std::size_t begin = buffer.bytes.size();
    if (queue.serializeSampleItem(item, out) != 0) {
      out.clear();
      buffer.bytes.resize(begin);
    }
  }
  return std::move(buffer.bytes);
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
  if (readItems(*this, &items)) {
    items.push_back({bookId, sampleFilePath});
    serializeSampleItems(items);
  }
}

int GraphQLSampleQueue::removeSample(const std::string& bookId) {
  // Also without the lock: the background application must get on with the queue.
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  std::vector<SampleItem> items;
  if (readItems(*this, &items)) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const SampleItem& item) { return item.bookId == bookId; });
    if (found != items.end()) {
      items.erase(found);
    }
    serializeSampleItems(items);
  }
  return 1;
}

GraphQLSampleQueue::SampleItem GraphQLSampleQueue::getNextSample() {
  lockSampleQueueFile();
  const Unlocker unlocker(*this);
  QueueReader reader;
  SampleItem item;
  reader.stream().peek();
  if (!reader.stream().eof()) {
    deserializeSampleItem(reader.stream(), &item);
  }
  return item;
}

int GraphQLSampleQueue::serializeSampleItems(const std::vector<SampleItem>& items) {
  const QueueFile file(O_WRONLY | O_CREAT);
  if (file.isOpen()) {
    file.replaceContent(encode(*this, items));
    return 0;
  }
  std::ostream nowhere(nullptr);  // a failed stream: each item is logged
  for (const SampleItem& item : items) {
    serializeSampleItem(item, nowhere);
  }
  return 0;
}

int GraphQLSampleQueue::deserializeSampleItems(std::vector<SampleItem>* items) {
  readItems(*this, items);
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
