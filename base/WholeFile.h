// Files that are read and replaced whole: no reader ever sees half of one, and a writer that dies
// leaves the old one. Holds no state but in its objects; safe from any thread.

#ifndef BASE_WHOLEFILE_H_
#define BASE_WHOLEFILE_H_

#include <cstddef>
#include <string>

namespace base {

// Owns an open file descriptor; -1 is none.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }
  // False, with errno, when the system reports only now what it could not write.
  bool close();

 private:
  int descriptor_;
};

// Why a file operation failed: the step, such as "rename", and its errno. No step means success.
struct FileFailure {
  const char* step = nullptr;
  int error = 0;
  bool isPlaced = false;  // the new file is there already; only a power cut could lose it

  explicit operator bool() const { return step != nullptr; }
  // One clause: the step, the system's text and what to try.
  std::string text() const;
};

// Reads the file at `path` into `*content`. A file of more than `limit` bytes (EFBIG), and what is
// no regular file (EISDIR, EINVAL), fails; a missing one fails with ENOENT.
FileFailure readWholeFile(const std::string& path, std::size_t limit, std::string* content);

// The lock, between threads and processes, of those who change the file at `path`: a file of mode
// 0600 beside it, which stays. Where the folder is missing it is made, with those above it, each
// with mode 0700. The constructor waits for the lock; the destructor releases it.
class FileLock {
 public:
  explicit FileLock(const std::string& path);
  const FileFailure& failure() const { return failure_; }

 private:
  FileFailure failure_;
  Descriptor descriptor_;
};

enum class Placing { Replace, KeepExisting };

// Puts a file of mode 0600 with this content at `path`, whole and on the disk, or leaves what is
// there. KeepExisting leaves a file that is there, which is no failure. For holders of the lock:
// what a writer that died has left beside the file goes, too.
FileFailure placeWholeFile(const std::string& path, const std::string& content, Placing placing);

}  // namespace base

#endif  // BASE_WHOLEFILE_H_
