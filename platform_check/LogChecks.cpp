// The log. What was written can be looked at only when --log says where it is.

#include <fcntl.h>
#include <ov_sdk.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "platform_check/Check.h"

namespace platform_check {

namespace {

const int kFailureLevel = 2;
const int kInformationLevel = 5;
const std::size_t kLongBytes = 100000;

// What is logged while the object lives.
class Log {
 public:
  explicit Log(const Settings& settings) : path_(settings.log) {
    if (path_.empty()) {
      throw Skip("set --log to the file of the log, or to stderr");
    }
    if (path_ == "stderr") {
      path_ = settings.realPath("stderr");
      const int file = ::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
      require(file >= 0 && ::dup2(file, STDERR_FILENO) >= 0, "cannot write " + path_);
      ::close(file);
    }
    before_ = contentOf(path_).size();
  }

  std::string content() const {
    const std::string all = contentOf(path_);
    return all.substr(std::min(before_, all.size()));
  }

  // The line with this text; fails when there is none.
  std::string lineWith(const std::string& text) const {
    const std::string all = content();
    const std::size_t at = all.find(text);
    require(at != std::string::npos, "the log has no " + quoted(text));
    const std::size_t start = all.rfind('\n', at);
    return all.substr(start == std::string::npos ? 0 : start + 1, all.find('\n', at) - start - 1);
  }

 private:
  std::string path_;
  std::size_t before_ = 0;
};

// Keeps a check's many lines from the terminal, where the implementation logs to standard error.
void silenceStandardError() {
  const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nothing, STDERR_FILENO);
  ::close(nothing);
}

void failureIsWritten(const Settings& settings) {
  const Log log(settings);
  ov_print_log2(kFailureLevel, "Source.cpp", 4711, "int function(const char *)", "marker %s",
                "one");
  const std::string line = log.lineWith("marker one");
  for (const char* part : {"Source.cpp", "4711", "int function(const char *)"}) {
    require(line.find(part) != std::string::npos, "the line " + quoted(line) + " lacks " + part);
  }
}

void eachCallIsOneLine(const Settings& settings) {
  const Log log(settings);
  ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "marker %s", "{\n  \"a\" : 1\n}\r\n");
  ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "end");
  const std::string content = log.content();
  requireEqual("the number of lines of two calls", std::count(content.begin(), content.end(), '\n'),
               2);
}

void percentInAValueIsText(const Settings& settings) {
  silenceStandardError();
  for (const char* value : {"100%", "%s%s%s%s%s%s%s%s%s%s", "%n%n%n%n%n%n", "%1000000d", "%"}) {
    ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "value [%s]", value);
  }
  const Log log(settings);
  ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "value [%s]", "50%s%d");
  log.lineWith("value [50%s%d]");
}

void anyFormatIsPrinted(const Settings& settings) {
  silenceStandardError();
  for (const int level : {kFailureLevel, kInformationLevel}) {
    ov_print_log2(level, __FILE__, __LINE__, __func__, "no value");
    ov_print_log2(level, __FILE__, __LINE__, __func__, "%s", "");
    ov_print_log2(level, __FILE__, __LINE__, __func__,
                  "%d%% %u %ld %lld %zu %x %c %p %.3f %.*s %5s", -1, 1U, 2L, 3LL, sizeof(int), 255U,
                  'c', static_cast<void*>(nullptr), 0.5, 2, "abc", "r");
  }
  const Log log(settings);
  ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "%d %u %lld %c %.1f %.*s|%3s|", -1, 1U,
                -5000000000LL, 'c', 0.5, 2, "abc", "r");
  log.lineWith("-1 1 -5000000000 c 0.5 ab|  r|");
}

void longLinesAreWhole(const Settings& settings) {
  silenceStandardError();
  const std::string text(kLongBytes, 'x');
  for (const int level : {kFailureLevel, kInformationLevel}) {
    ov_print_log2(level, __FILE__, __LINE__, __func__, "[%s]", text.c_str());
  }
  const Log log(settings);
  ov_print_log2(kFailureLevel, __FILE__, __LINE__, __func__, "[%s]", text.c_str());
  require(log.content().find("[" + text + "]") != std::string::npos,
          "a line of " + std::to_string(kLongBytes) + " bytes was cut");
}

void anyBytesAreSurvived(const Settings&) {
  silenceStandardError();
  const std::string text = everyByteButNul();
  for (const int level : {0, 1, kFailureLevel, 3, kInformationLevel, 9, -1}) {
    ov_print_log2(level, __FILE__, __LINE__, __func__, "%s", text.c_str());
    ov_print_log2(level, "", 0, "", "%s", "\xff\xfe\xc3");
  }
}

void threadsDoNotMix(const Settings& settings) {
  const int kLinesEach = 200;
  const auto logLines = [](char byte) {
    const std::string text(200, byte);
    for (int i = 0; i < kLinesEach; ++i) {
      ov_print_log2(kFailureLevel, __FILE__, __LINE__, "thread", "[%s]", text.c_str());
    }
  };
  const auto logFromTwo = [&logLines] {
    std::thread other(logLines, 'b');
    logLines('a');
    other.join();
  };
  const Log log(settings);
  logFromTwo();
  const std::string content = log.content();
  for (const char byte : {'a', 'b'}) {
    int found = 0;
    const std::string text = "[" + std::string(200, byte) + "]";
    for (std::size_t at = 0; (at = content.find(text, at)) != std::string::npos; ++at) {
      ++found;
    }
    requireEqual("the number of whole lines of one thread", found, kLinesEach);
  }
}

}  // namespace

const std::vector<Check> kLogChecks = {
    {"log", "failure-is-written", "Write lines of level 2 with file, line, function and message.",
     &failureIsWritten},
    {"log", "each-call-is-one-line", "Replace line ends within a message.", &eachCallIsOneLine},
    {"log", "percent-in-a-value-is-text",
     "Use the format once; pass its result on with \"%s\", never as a format.",
     &percentInAValueIsText},
    {"log", "any-format-is-printed", "Format with vsnprintf() and the values of the call.",
     &anyFormatIsPrinted},
    {"log", "long-lines-are-whole",
     "Use no buffer of fixed size: a response of the server is one line.", &longLinesAreWhole},
    {"log", "any-bytes-are-survived", "Accept any level, and values that are not UTF-8.",
     &anyBytesAreSurvived},
    {"log", "threads-do-not-mix", "Write a line with one call, or hold a lock.", &threadsDoNotMix},
};

}  // namespace platform_check
