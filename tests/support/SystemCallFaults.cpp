#include "tests/support/SystemCallFaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <limits>
#include <map>
#include <vector>

namespace support {

namespace {

struct Failure {
  std::string name;
  int error;
  int first;
  int end;
};

struct Arranged {
  std::vector<Failure> failures;
  std::size_t most = std::numeric_limits<std::size_t>::max();
  int endOfFile = std::numeric_limits<int>::max();
  std::map<std::string, int> counts;
};

Arranged* arranged = nullptr;

// True, with errno set, when this call has to fail.
bool fails(const char* name) {
  if (arranged == nullptr) {
    return false;
  }
  const int number = ++arranged->counts[name];
  for (const Failure& failure : arranged->failures) {
    if (failure.name == name && number >= failure.first && number < failure.end) {
      errno = failure.error;
      return true;
    }
  }
  return false;
}

std::size_t limited(std::size_t size) {
  return arranged == nullptr ? size : std::min(size, arranged->most);
}

bool isAtEndOfFile() {
  return arranged != nullptr && arranged->counts["read"] >= arranged->endOfFile;
}

}  // namespace

SystemCallFaults::SystemCallFaults() {
  arranged = new Arranged;
}

SystemCallFaults::~SystemCallFaults() {
  delete arranged;
  arranged = nullptr;
}

void SystemCallFaults::fail(const std::string& name, int error, int nth, int times) {
  arranged->failures.push_back({name, error, nth, nth + times});
}

void SystemCallFaults::transferAtMost(std::size_t bytes) {
  arranged->most = bytes;
}

void SystemCallFaults::endOfFileAtRead(int nth) {
  arranged->endOfFile = nth;
}

int SystemCallFaults::count(const std::string& name) const {
  return arranged->counts[name];
}

}  // namespace support

extern "C" {

int open(const char* path, int flags, ...) {
  if (support::fails("open")) {
    return -1;
  }
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  return ::openat(AT_FDCWD, path, flags, mode);
}

int fstat(int descriptor, struct stat* status) noexcept {
  return support::fails("fstat") ? -1 : ::fstatat(descriptor, "", status, AT_EMPTY_PATH);
}

ssize_t read(int descriptor, void* bytes, size_t size) {
  if (support::fails("read")) {
    return -1;
  }
  return support::isAtEndOfFile() ? 0
                                  : ::syscall(SYS_read, descriptor, bytes, support::limited(size));
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  return support::fails("write") ? -1
                                 : ::syscall(SYS_write, descriptor, bytes, support::limited(size));
}

int ftruncate(int descriptor, off_t size) noexcept {
  if (support::fails("ftruncate")) {
    return -1;
  }
  const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
  return ::truncate(path.c_str(), size);
}

int flock(int descriptor, int operation) noexcept {
  return support::fails("flock") ? -1
                                 : static_cast<int>(::syscall(SYS_flock, descriptor, operation));
}

}  // extern "C"
