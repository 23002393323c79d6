// Reads and replaces whole files: no reader ever sees half a file, and a writer that dies leaves
// the old file. All state is in the objects; safe from any thread.

#ifndef BASE_WHOLEFILE_H_
#define BASE_WHOLEFILE_H_

#include <cstddef>
#include <string>

namespace base {

// Owns an open file descriptor; -1 means no descriptor.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }
  // False, with errno, when the system reports a write error only at this point.
  bool close();

 private:
  int descriptor_;
};

// Why a file operation failed: the step, such as "rename", and its errno. No step means success.
struct FileFailure {
  const char* step = nullptr;
  int error = 0;
  bool isPlaced = false;  // the new file is in place; only a power failure could lose it

  explicit operator bool() const { return step != nullptr; }
  // One clause: the step, the system's error text and what to do.
  std::string text() const;
};

// Reads the file at `path` into `*content`. Fails with EFBIG for more than `limit` bytes, with
// EISDIR or EINVAL for anything but a regular file, and with ENOENT for a missing file.
FileFailure readWholeFile(const std::string& path, std::size_t limit, std::string* content);

// The lock, between threads and processes, for changes to the file at `path`. It is a file of mode
// 0600 beside that file, and is never removed. Missing folders are created with mode 0700. The
// constructor waits for the lock; the destructor releases it.
class FileLock {
 public:
  explicit FileLock(const std::string& path);
  const FileFailure& failure() const { return failure_; }

 private:
  FileFailure failure_;
  Descriptor descriptor_;
};

enum class Placing { Replace, KeepExisting };

// Puts a file of mode 0600 with this content at `path`, complete and synced to disk. On failure the
// old file is unchanged. KeepExisting keeps an existing file, and reports success. The caller must
// hold the lock: this also removes a temporary file that a dead writer has left.
FileFailure placeWholeFile(const std::string& path, const std::string& content, Placing placing);

}  // namespace base

#endif  // BASE_WHOLEFILE_H_
