#include "base/Log.h"

#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"
#include "tests/support/TemporaryRoot.h"

using support::ScopedSetting;
using support::TemporaryRoot;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

struct SystemLine {
  int priority;
  std::string text;
};
std::vector<SystemLine> systemLines;

}  // namespace

// Replaces the system's function: a test must not write to the machine's log.
extern "C" void syslog(int priority, const char* format, ...) {
  va_list values;
  va_start(values, format);
  char text[512];
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  systemLines.push_back({priority, text});
}

class LogTest : public testing::Test {
 protected:
  static void log(int level, const std::string& text) {
    ov_print_log2(level, "dir/File.cpp", 12, "void f(int)", "%s", text.c_str());
  }

  // The text of the only line, without its prefix.
  std::string loggedAs(const std::string& text) {
    root_.clearLog();
    log(2, text);
    const std::string line = root_.log();
    const std::string before = "void f(int): ";
    const std::size_t at = line.find(before);
    EXPECT_NE(at, std::string::npos) << line;
    EXPECT_THAT(line, EndsWith("\n"));
    return at == std::string::npos
               ? std::string()
               : line.substr(at + before.size(), line.size() - at - before.size() - 1);
  }

  TemporaryRoot root_;
};

TEST_F(LogTest, WritesTimeWithZoneLevelPlaceAndText) {
  const ScopedSetting zone("TZ", "XYZ-05:30");
  ::tzset();
  log(2, "text");
  EXPECT_THAT(root_.log(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"
                           "\\+0530 2 dir/File\\.cpp:12 void f\\(int\\): text\n"));
}

TEST_F(LogTest, WritesFailuresOnlyUnlessAskedForMore) {
  const ScopedSetting level("ORVANE_LOG_LEVEL", "");
  log(3, "three");
  log(5, "five");
  EXPECT_EQ(root_.log(), "");
  log(2, "two");
  EXPECT_THAT(root_.log(), EndsWith(": two\n"));
}

TEST_F(LogTest, WritesUpToTheLevelAskedFor) {
  const ScopedSetting level("ORVANE_LOG_LEVEL", "4");
  log(4, "four");
  log(5, "five");
  EXPECT_THAT(root_.log(), EndsWith(" 4 dir/File.cpp:12 void f(int): four\n"));
}

TEST_F(LogTest, WritesNothingBelowLevelTwo) {
  const ScopedSetting level("ORVANE_LOG_LEVEL", "9");
  log(1, "one");
  log(0, "zero");
  log(-1, "minus one");
  EXPECT_EQ(root_.log(), "");
}

TEST_F(LogTest, WritesNothingWhenAskedToBeQuiet) {
  const ScopedSetting level("ORVANE_LOG_LEVEL", "1");
  log(2, "two");
  EXPECT_EQ(root_.log(), "");
}

TEST_F(LogTest, DoesNotLookAtTheValuesOfALineThatIsNotWritten) {
  const char* notAText = reinterpret_cast<const char*>(1);
  ov_print_log2(5, "f", 1, "g", "%s", notAText);
  EXPECT_EQ(root_.log(), "");
}

TEST_F(LogTest, WritesTextOfAnyLengthWhole) {
  for (const std::size_t length : {1022u, 1023u, 1024u, 1025u, 300000u}) {
    const std::string text(length, 'x');
    EXPECT_EQ(loggedAs(text), text);
  }
}

TEST_F(LogTest, MakesControlCharactersVisible) {
  EXPECT_EQ(loggedAs("a\nb\r\tc\x1b[31md\x7f\x01"), "a\\nb\\r\\tc\\x1b[31md\\x7f\\x01");
  EXPECT_EQ(loggedAs("C1: \xc2\x9b"), "C1: \\xc2\\x9b");
}

TEST_F(LogTest, LeavesUtf8AndBackslashes) {
  const std::string text = "\\n \xc3\xa4 \xe2\x82\xac \xf0\x9f\x93\x96 \xc2\xa0 \xf4\x8f\xbf\xbf";
  EXPECT_EQ(loggedAs(text), text);
}

TEST_F(LogTest, MakesBytesThatAreNotUtf8Visible) {
  EXPECT_EQ(loggedAs("\x80"), "\\x80");
  EXPECT_EQ(loggedAs("\xc3"), "\\xc3");
  EXPECT_EQ(loggedAs("\xc3(\xff"), "\\xc3(\\xff");
  EXPECT_EQ(loggedAs("\xc0\xaf"), "\\xc0\\xaf");
  EXPECT_EQ(loggedAs("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");
  EXPECT_EQ(loggedAs("\xf0\x80\x80\xaf"), "\\xf0\\x80\\x80\\xaf");
  EXPECT_EQ(loggedAs("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(loggedAs("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
  EXPECT_EQ(loggedAs("\xf5\x80\x80\x80"), "\\xf5\\x80\\x80\\x80");
}

TEST_F(LogTest, MasksSecrets) {
  EXPECT_EQ(loggedAs("{\n \"token\" : \"abc\"\n}"), "{\\n \"token\" : \"***\"\\n}");
}

TEST_F(LogTest, ShowsSecretsWhenToldTo) {
  const ScopedSetting secrets("ORVANE_LOG_SECRETS", "1");
  EXPECT_EQ(loggedAs("Bearer abc"), "Bearer abc");
}

TEST_F(LogTest, AppendsToAFileThatOnlyItsOwnerReads) {
  log(2, "one");
  log(2, "two");
  EXPECT_THAT(root_.log(), HasSubstr("one\n"));
  EXPECT_THAT(root_.log(), EndsWith("two\n"));
  struct stat status = {};
  ASSERT_EQ(::stat(std::getenv("ORVANE_LOG"), &status), 0);
  EXPECT_EQ(status.st_mode & 07777u, 0600u);
}

TEST_F(LogTest, WritesToStandardErrorByDefault) {
  const ScopedSetting target("ORVANE_LOG", "");
  testing::internal::CaptureStderr();
  log(2, "text");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), EndsWith("void f(int): text\n"));
}

TEST_F(LogTest, WritesToStandardErrorWhenTheFileCannotBeWrittenAndSaysSoOnce) {
  EXPECT_TRUE(support::passesInNewProcess([this] {
    const ScopedSetting target("ORVANE_LOG", root_.path() + "/missing/log");
    testing::internal::CaptureStderr();
    log(2, "one");
    log(2, "two");
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_THAT(lines, StartsWith("Cannot write the log file " + root_.path() + "/missing/log"));
    EXPECT_THAT(lines, HasSubstr("one\n"));
    EXPECT_THAT(lines, EndsWith("two\n"));
    EXPECT_EQ(lines.find("Cannot", 1), std::string::npos);
  }));
}

TEST_F(LogTest, WritesToTheSystemsLog) {
  const ScopedSetting target("ORVANE_LOG", "syslog");
  const ScopedSetting level("ORVANE_LOG_LEVEL", "5");
  systemLines.clear();
  log(2, "100%s");
  log(5, "five");
  ASSERT_EQ(systemLines.size(), 2u);
  EXPECT_EQ(systemLines[0].priority, LOG_ERR);
  EXPECT_THAT(systemLines[0].text, EndsWith("void f(int): 100%s"));
  EXPECT_EQ(systemLines[1].priority, LOG_INFO);
}

TEST_F(LogTest, KeepsErrno) {
  EXPECT_TRUE(support::passesInNewProcess([this] {
    const ScopedSetting target("ORVANE_LOG", root_.path() + "/missing/log");
    testing::internal::CaptureStderr();
    errno = EDOM;
    log(2, "text");
    EXPECT_EQ(errno, EDOM);
    testing::internal::GetCapturedStderr();
  }));
}

TEST_F(LogTest, KeepsLinesOfSeveralThreadsApart) {
  std::vector<std::thread> threads;
  for (char letter = 'a'; letter < 'e'; ++letter) {
    threads.emplace_back([letter] {
      for (int i = 0; i < 200; ++i) {
        log(2, std::string(2000, letter));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::istringstream lines(root_.log());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_EQ(line.substr(line.size() - 2000), std::string(2000, line.back()));
  }
  EXPECT_EQ(count, 800);
}

TEST_F(LogTest, NamesWhatIsUnknown) {
  ov_print_log2(2, nullptr, 1, nullptr, "x");
  EXPECT_THAT(root_.log(), EndsWith(" 2 ?:1 ?: x\n"));
}
