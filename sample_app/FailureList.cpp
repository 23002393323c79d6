#include "sample_app/FailureList.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <json/json.h>

#include "base/Log.h"
#include "base/Settings.h"
#include "base/WholeFile.h"

namespace sample_app {

const char kFailureListPath[] = "/mnt/ext1/system/state/cache/sample_failures.jsonl";

namespace {

constexpr off_t kLargestList = 1024L * 1024;

std::string timeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts = {};
  char text[32] = "";
  ::gmtime_r(&now, &parts);
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

std::string lineFor(const SampleItem& item, const std::string& reason) {
  Json::Value entry;
  entry["time"] = timeNow();
  entry["bookId"] = item.bookId;
  entry["sampleFilePath"] = item.sampleFilePath;
  entry["reason"] = reason;
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, entry) + "\n";
}

void keepSmall(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0 && status.st_size > kLargestList) {
    std::rename(path.c_str(), (path + ".old").c_str());
  }
}

// One write, so that a process that is killed leaves the whole line or nothing.
bool append(const std::string& path, const std::string& line) {
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC;
  base::Descriptor file(::open(path.c_str(), flags, 0600));
  errno = file.isOpen() ? ENOSPC : errno;  // an incomplete write sets no errno
  return file.isOpen() &&
         ::write(file.get(), line.data(), line.size()) == static_cast<ssize_t>(line.size()) &&
         ::fsync(file.get()) == 0 && file.close();
}

}  // namespace

bool listFailure(const SampleItem& item, const std::string& reason) {
  const std::string path = base::hostPath(kFailureListPath);
  const base::FileLock lock(path);
  keepSmall(path);
  if (!append(path, lineFor(item, reason))) {
    BASE_LOG_FAILURE("Cannot write %s: %s; check its folder and the file system", path.c_str(),
                     std::strerror(errno));
    return false;
  }
  return true;
}

}  // namespace sample_app
