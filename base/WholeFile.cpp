#include "base/WholeFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace base {
namespace {

FileFailure failed(const char* step) {
  FileFailure failure;
  failure.step = step;
  failure.error = errno;
  return failure;
}

const char* adviceFor(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "free some space and try again";
    case EACCES:
    case EPERM:
    case EROFS:
      return "check its owner, its permissions and the file system";
    case EISDIR:
    case ENOTDIR:
    case EINVAL:
      return "remove what is in place of the file or folder";
    case EFBIG:
      return "remove the file or make it smaller";
    default:
      return "check the file system and try again";
  }
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// A name beside `path` that no other file has.
std::string hiddenBeside(const std::string& path, const std::string& suffix) {
  return folderOf(path) + "/." + nameOf(path) + suffix;
}

FileFailure syncFolder(const std::string& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor.isOpen()) {
    return failed("open folder");
  }
  return ::fsync(descriptor.get()) == 0 ? FileFailure() : failed("fsync folder");
}

// Opens a new file. Removes an existing file, which a dead writer has left.
int openNew(const std::string& path) {
  const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const int file = ::open(path.c_str(), flags, 0600);
  return file < 0 && errno == EEXIST && ::unlink(path.c_str()) == 0
             ? ::open(path.c_str(), flags, 0600)
             : file;
}

// A new file beside `path`, which is removed unless it is moved to `path`. One name is enough: only
// the owner of the lock creates the file.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& path)
      : path_(hiddenBeside(path, ".new")),
        file_(openNew(path_)),
        failure_(file_.isOpen() ? FileFailure() : failed("create")),
        exists_(file_.isOpen()) {}
  ~TemporaryFile() {
    if (exists_) {
      ::unlink(path_.c_str());
    }
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  FileFailure write(const std::string& content) {
    if (failure_) {
      return failure_;
    }
    for (std::size_t written = 0; written < content.size();) {
      const ssize_t count =
          ::write(file_.get(), content.data() + written, content.size() - written);
      if (count < 0 && errno != EINTR) {
        return failed("write");
      }
      written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (::fsync(file_.get()) != 0) {
      return failed("fsync");
    }
    return file_.close() ? FileFailure() : failed("close");
  }

  FileFailure moveTo(const std::string& path, Placing placing) {
    if (placing == Placing::KeepExisting) {
      const bool isThere = ::link(path_.c_str(), path.c_str()) == 0 || errno == EEXIST;
      return isThere ? FileFailure() : failed("link");
    }
    if (::rename(path_.c_str(), path.c_str()) != 0) {
      return failed("rename");
    }
    exists_ = false;
    return FileFailure();
  }

 private:
  std::string path_;
  Descriptor file_;
  FileFailure failure_;
  bool exists_;
};

// Reads the open file into `*content`.
FileFailure readAll(int file, std::size_t expected, std::size_t limit, std::string* content) {
  content->resize(expected + 1);  // one more, to find the end without another read
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = ::read(file, &(*content)[size], content->size() - size);
    if (count < 0 && errno != EINTR) {
      return failed("read");
    }
    if (count == 0) {
      break;
    }
    size += count > 0 ? static_cast<std::size_t>(count) : 0;
    if (size > limit) {
      errno = EFBIG;
      return failed("read");
    }
    if (size == content->size()) {
      content->resize(2 * size);
    }
  }
  content->resize(size);
  return FileFailure();
}

// Creates the folder. Its parent must exist.
FileFailure makeOneFolder(const std::string& folder) {
  if (::mkdir(folder.c_str(), 0700) == 0) {
    return syncFolder(folderOf(folder));
  }
  // If it is not a folder, its next use fails.
  return errno == EEXIST ? FileFailure() : failed("make folder");
}

FileFailure makeFolder(const std::string& folder) {
  const FileFailure failure = makeOneFolder(folder);
  const std::string above = folderOf(folder);
  if (!failure || failure.error != ENOENT || above == folder) {
    return failure;
  }
  const FileFailure failureAbove = makeFolder(above);
  return failureAbove ? failureAbove : makeOneFolder(folder);
}

// Opens the lock file of `path`, after creating its folder if that is missing. On failure returns
// -1, with the reason in `*failure`.
int openLockFile(const std::string& path, FileFailure* failure) {
  const std::string name = hiddenBeside(path, ".lock");
  const int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC;
  int file = ::open(name.c_str(), flags, 0600);
  if (file < 0 && errno == ENOENT) {
    *failure = makeFolder(folderOf(path));
    file = *failure ? -1 : ::open(name.c_str(), flags, 0600);
  }
  if (file < 0 && !*failure) {
    *failure = failed("open lock file");
  }
  return file;
}

}  // namespace

Descriptor::~Descriptor() {
  if (isOpen()) {
    const int kept = errno;
    ::close(descriptor_);
    errno = kept;
  }
}

bool Descriptor::close() {
  const int descriptor = descriptor_;
  descriptor_ = -1;  // it is closed, whatever the result
  return ::close(descriptor) == 0;
}

std::string FileFailure::reason() const {
  return std::string(step) + ": " + std::generic_category().message(error);
}

std::string FileFailure::text() const {
  return reason() + "; " + adviceFor(error);
}

FileFailure readWholeFile(const std::string& path, std::size_t limit, std::string* content) {
  content->clear();
  // Without O_NONBLOCK, open() would wait for the other end of a pipe in place of the file.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) {
    return failed("open");
  }
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0) {
    return failed("fstat");
  }
  if (!S_ISREG(status.st_mode)) {
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return failed("read");
  }
  if (static_cast<std::uint64_t>(status.st_size) > limit) {
    errno = EFBIG;
    return failed("read");
  }
  return readAll(file.get(), static_cast<std::size_t>(status.st_size), limit, content);
}

FileLock::FileLock(const std::string& path) : descriptor_(openLockFile(path, &failure_)) {
  if (failure_) {
    return;
  }
  while (::flock(descriptor_.get(), LOCK_EX) != 0) {
    if (errno != EINTR) {
      failure_ = failed("lock");
      return;
    }
  }
}

FileFailure placeWholeFile(const std::string& path, const std::string& content, Placing placing) {
  TemporaryFile temporary(path);
  FileFailure failure = temporary.write(content);
  if (!failure) {
    failure = temporary.moveTo(path, placing);
  }
  if (!failure) {
    failure = syncFolder(folderOf(path));
    failure.isPlaced = true;
  }
  return failure;
}

}  // namespace base
