#include "base/Log.h"

#include <fcntl.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "base/MaskSecrets.h"
#include "base/Settings.h"
#include "base/VisibleText.h"

namespace host {
namespace {

class ErrnoKeeper {
 public:
  ErrnoKeeper() = default;
  ~ErrnoKeeper() { errno = kept_; }
  ErrnoKeeper(const ErrnoKeeper&) = delete;
  ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

 private:
  int kept_ = errno;
};

std::string timeWithZone() {
  timeval now = {};
  ::gettimeofday(&now, nullptr);
  std::tm local = {};
  ::localtime_r(&now.tv_sec, &local);
  std::array<char, 32> seconds = {};
  std::array<char, 16> zone = {};
  std::strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &local);
  std::strftime(zone.data(), zone.size(), "%z", &local);
  std::array<char, 64> text = {};
  std::snprintf(text.data(), text.size(), "%s.%03d%s", seconds.data(),
                static_cast<int>(now.tv_usec / 1000), zone.data());
  return text.data();
}

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list values) {
  std::array<char, 1024> buffer;
  va_list again;
  va_copy(again, values);
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, values);
  std::string text;
  if (length < 0) {
    text = format;  // formatting failed; log the unformatted text
  } else if (static_cast<std::size_t>(length) < buffer.size()) {
    text.assign(buffer.data(), static_cast<std::size_t>(length));
  } else {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(&text[0], text.size() + 1, format, again);
  }
  va_end(again);
  return text;
}

// Normally writes the line with one system call, so that lines of two processes do not mix.
bool writeLine(int descriptor, const std::string& line) {
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t count = ::write(descriptor, line.data() + written, line.size() - written);
    if (count < 0 && errno != EINTR) {
      return false;
    }
    written += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  return true;
}

bool appendToFile(const std::string& path, const std::string& line) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    return false;
  }
  const bool written = writeLine(descriptor, line);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return written;
}

void reportBrokenLog(const std::string& path) {
  static std::atomic<bool> reported(false);
  if (!reported.exchange(true)) {
    writeLine(STDERR_FILENO, "Cannot write the log file " + base::visibleText(path) + ": " +
                                 std::strerror(errno) + "; set " + base::settings::kLogTarget.name +
                                 " to a writable file. Logging to standard error.\n");
  }
}

void writeToTarget(int level, std::string line) {
  const std::string target = base::text(base::settings::kLogTarget);
  if (target == "syslog") {
    ::syslog(level <= base::kLogFailure ? LOG_ERR : LOG_INFO, "%s", line.c_str());
    return;
  }
  line += '\n';
  if (target != "stderr") {
    if (appendToFile(target, line)) {
      return;
    }
    reportBrokenLog(target);
  }
  writeLine(STDERR_FILENO, line);
}

std::string orUnknown(const char* text) {
  return text == nullptr ? "?" : text;
}

// True when a line of this level would be written.
bool logs(int level) {
  return level >= base::kLogFailure && level <= base::number(base::settings::kLogLevel, 0, 9);
}

}  // namespace

}  // namespace host

void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) {
  const host::ErrnoKeeper keeper;
  if (!host::logs(level)) {
    return;
  }
  va_list values;
  va_start(values, format);
  std::string text = host::formatted(format, values);
  va_end(values);
  if (!base::isOn(base::settings::kLogSecrets)) {
    text = base::maskSecrets(text);
  }
  const std::string place =
      host::orUnknown(file) + ":" + std::to_string(line) + " " + host::orUnknown(function);
  host::writeToTarget(level, base::visibleText(host::timeWithZone() + " " + std::to_string(level) +
                                               " " + place + ": " + text));
}
