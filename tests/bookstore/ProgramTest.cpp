// The built program as a process of its own, over the development host.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bookstore/Commands.h"
#include "bookstore/ExitCode.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryRoot.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

class ProgramTest : public ::testing::Test {
 protected:
  // Runs a line of shell text in which $bookstore is the program; what the line prints to standard
  // output and standard error, terminals' line ends made plain, is in `printed`.
  int shell(const std::string& line) {
    const support::Ended ended = support::run({"/bin/bash", "-c", line});
    printed = ended.output;
    return ended.code;
  }

  // The same for the program on a terminal of its own.
  int terminal(const std::string& words) {
    return shell("script --quiet --return --command \"$bookstore " + words +
                 "\" /dev/null </dev/null");
  }

  std::string printed;

  support::TemporaryRoot root;
  support::ScopedSetting program{"bookstore", BOOKSTORE_PROGRAM};
  support::ScopedSetting terminalKind{"TERM", "xterm"};
  support::ScopedSetting noColor{"NO_COLOR", ""};
  // A closed port: nothing in these tests leaves the machine, or finds a server on it.
  support::ScopedSetting connectTo{"ORVANE_CONNECT_TO", "::127.0.0.1:1"};
};

}  // namespace

TEST_F(ProgramTest, ListsEveryCommandAndExitCodeInItsHelp) {
  EXPECT_EQ(shell("$bookstore --help"), bookstore::kDone);
  for (const bookstore::Command& command : bookstore::commands()) {
    if (command.name.find(' ') == std::string::npos) {  // others stand in their group's
      EXPECT_THAT(printed, HasSubstr("\n  " + command.name + " "));
    }
  }
  for (const bookstore::ExitStatus& status : bookstore::exitStatuses()) {
    EXPECT_THAT(printed, HasSubstr("\n  " + std::to_string(status.code) + "  " + status.meaning));
  }
}

TEST_F(ProgramTest, EndsWithTheUsageCodeAndAMessageOnStandardError) {
  EXPECT_EQ(shell("$bookstore stores --bogus 2>/dev/null"), bookstore::kUsage);
  EXPECT_THAT(printed, IsEmpty());
  EXPECT_EQ(shell("$bookstore stores --bogus >/dev/null"), bookstore::kUsage);
  EXPECT_THAT(printed, HasSubstr("--bogus"));
}

TEST_F(ProgramTest, PrintsDataToStandardOutput) {
  EXPECT_EQ(shell("$bookstore status 2>/dev/null"), bookstore::kDone);
  EXPECT_THAT(printed, HasSubstr("Root folder         " + root.path() + "\n"));
}

TEST_F(ProgramTest, ReportsAStoreThatDoesNotAnswer) {
  EXPECT_EQ(shell("$bookstore stores --refresh"), bookstore::kTransferFailed);
  EXPECT_THAT(printed,
              AllOf(HasSubstr("no connection to the server (7)"), HasSubstr("ORVANE_CONNECT_TO")));
}

TEST_F(ProgramTest, PrintsTheRequestOfADryRunAndKeepsNothing) {
  EXPECT_EQ(shell("$bookstore stores --refresh --dry-run --curl"), bookstore::kDone);
  EXPECT_THAT(printed, AllOf(StartsWith("curl "), HasSubstr("'Store: de_de'")));
  EXPECT_EQ(root.contentOf("/mnt/ext1/system/state/cache/store_list.cfg"), "");
}

TEST_F(ProgramTest, ReportsAFaultyLogLevelOnceThoughThePlatformReadsItToo) {
  EXPECT_EQ(shell("ORVANE_LOG_LEVEL=loud $bookstore stores --refresh"), bookstore::kTransferFailed);
  const std::string fault = "ORVANE_LOG_LEVEL=loud is not";
  const std::size_t first = printed.find(fault);
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(printed.find(fault, first + 1), std::string::npos);
}

TEST_F(ProgramTest, ReportsAStandardOutputThatIsClosed) {
  EXPECT_EQ(shell("$bookstore status >&-"), bookstore::kLocalFailure);
  EXPECT_THAT(printed, HasSubstr("cannot write to standard output: Bad file descriptor"));
}

TEST_F(ProgramTest, ReportsAStandardOutputThatIsFull) {
  EXPECT_EQ(shell("$bookstore status >/dev/full"), bookstore::kLocalFailure);
  EXPECT_THAT(printed, HasSubstr("cannot write to standard output: No space left on device"));
}

TEST_F(ProgramTest, ReportsAReaderThatIsGone) {
  EXPECT_EQ(shell("exec 3> >(:); wait $!; $bookstore status >&3"), bookstore::kLocalFailure);
  EXPECT_THAT(printed, HasSubstr("cannot write to standard output: Broken pipe"));
}

TEST_F(ProgramTest, DoesItsJobWithoutAnyStream) {
  EXPECT_EQ(shell("$bookstore stores --refresh <&- >&- 2>&-"), bookstore::kTransferFailed);
  EXPECT_THAT(printed, IsEmpty());
}

TEST_F(ProgramTest, ColoursOnATerminal) {
  EXPECT_EQ(terminal("sing"), bookstore::kUsage);
  EXPECT_THAT(printed, HasSubstr("\033[1;31mbookstore:"));
  terminal("stores --refresh");
  EXPECT_THAT(printed, HasSubstr("Asking the store\r"));
}

TEST_F(ProgramTest, LeavesColoursOutForWhoAsks) {
  const support::ScopedSetting without("NO_COLOR", "1");
  EXPECT_EQ(terminal("sing"), bookstore::kUsage);
  EXPECT_THAT(printed, AllOf(HasSubstr("bookstore:"), Not(HasSubstr("\033"))));
}

TEST_F(ProgramTest, LeavesColoursAndSpinnerOutOnADumbTerminal) {
  const support::ScopedSetting dumb("TERM", "dumb");
  EXPECT_EQ(terminal("stores --refresh"), bookstore::kTransferFailed);
  EXPECT_THAT(printed, AllOf(HasSubstr("bookstore:"), Not(HasSubstr("\033")),
                             Not(HasSubstr("Asking the store"))));
}

TEST_F(ProgramTest, ShowsTheLogOfTheLibraryWhenAsked) {
  const support::ScopedSetting target("ORVANE_LOG", "stderr");
  shell("$bookstore stores");
  EXPECT_THAT(printed, Not(HasSubstr("Loaded stores: count [0]")));
  shell("$bookstore stores -v");
  EXPECT_THAT(printed, HasSubstr("Loaded stores: count [0]"));
}
