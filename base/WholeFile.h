// Files that are read and replaced as a whole: no reader sees a part of a file, and a writer that
// dies leaves the old file. All state is in the objects; safe from any thread.

#ifndef BASE_WHOLEFILE_H_
#define BASE_WHOLEFILE_H_

#include <cstddef>
#include <string>

namespace base {

// Owns an open file descriptor; -1 for none.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }
  // False, with errno, if the system reports a failed write only now.
  bool close();

 private:
  int descriptor_;
};

// Why a file operation failed: the step, such as "rename", and its errno. Without a step: success.
struct FileFailure {
  const char* step = nullptr;
  int error = 0;
  bool isPlaced = false;  // the new file is in place; only a power cut could lose it

  explicit operator bool() const { return step != nullptr; }
  // The step and the system's text.
  std::string reason() const;
  // The reason and what to do, in one clause.
  std::string text() const;
};

// Reads the file at `path` into `*content`. Fails with ENOENT for a missing file, with EFBIG for a
// file of more than `limit` bytes, and with EISDIR or EINVAL if it is not a regular file.
FileFailure readWholeFile(const std::string& path, std::size_t limit, std::string* content);

// The lock, between threads and processes, for changes of the file at `path`: a file of mode 0600
// beside it, which is never removed. Creates missing folders with mode 0700. The constructor waits
// for the lock; the destructor releases it.
class FileLock {
 public:
  explicit FileLock(const std::string& path);
  const FileFailure& failure() const { return failure_; }

 private:
  FileFailure failure_;
  Descriptor descriptor_;
};

enum class Placing { Replace, KeepExisting };

// Puts a file of mode 0600 with this content at `path`, complete and on the disk, or changes
// nothing. KeepExisting keeps an existing file, and succeeds. The caller has the lock: a temporary
// file that a dead writer has left is removed.
FileFailure placeWholeFile(const std::string& path, const std::string& content, Placing placing);

}  // namespace base

#endif  // BASE_WHOLEFILE_H_
