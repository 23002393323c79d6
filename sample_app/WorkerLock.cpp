#include "sample_app/WorkerLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "base/Log.h"

namespace sample_app {

const char kWorkerLockPath[] = "/tmp/graphql_sample_metadata.lock";

namespace {

// Every user can read the file, which is enough for a lock. An existing file is opened without
// O_CREAT, which the system refuses in a sticky folder for another user's file.
int openLockFile() {
  const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int created = ::open(kWorkerLockPath, flags | O_CREAT | O_EXCL, 0644);
  return created >= 0 || errno != EEXIST ? created : ::open(kWorkerLockPath, flags);
}

bool isRegularFile(int file) {
  struct stat status = {};
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

WorkerLock::State lock(int file) {
  if (file >= 0 && !isRegularFile(file)) {
    errno = EINVAL;
  } else if (file >= 0) {
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
      return WorkerLock::State::Held;
    }
    if (errno == EWOULDBLOCK) {
      return WorkerLock::State::Busy;
    }
  }
  BASE_LOG_FAILURE("Cannot lock %s: %s; remove what is in its place", kWorkerLockPath,
                   std::strerror(errno));
  return WorkerLock::State::Failed;
}

}  // namespace

WorkerLock::WorkerLock() : file_(openLockFile()), state_(lock(file_.get())) {}

}  // namespace sample_app
