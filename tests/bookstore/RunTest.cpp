#include "bookstore/Run.h"

#include <cstdlib>
#include <iterator>

#include "bookstore/Failure.h"
#include "bookstore/commands/Request.h"
#include "tests/bookstore/BookstoreTest.h"

using bookstore::Command;
using bookstore::Context;
using bookstore::Sends;
using bookstore_tests::store;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class RunTest : public bookstore_tests::BookstoreTest {
 protected:
  // Runs the one command of a table, which does `work`.
  int runCommandThat(void (*work)(Context&)) {
    return run({"work"}, {{"work", "Does the work", Sends::Never, {}, work}});
  }

  static std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream in(line);
    return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
  }
};

}  // namespace

// --- Exit codes -------------------------------------------------------------------------------

TEST_F(RunTest, TheExitCodesAreThoseOfTheManualPage) {
  EXPECT_EQ(bookstore::kDone, 0);
  EXPECT_EQ(bookstore::kStoreRefused, 1);
  EXPECT_EQ(bookstore::kUsage, 2);
  EXPECT_EQ(bookstore::kTransferFailed, 3);
  EXPECT_EQ(bookstore::kBadStatus, 4);
  EXPECT_EQ(bookstore::kNoData, 5);
  EXPECT_EQ(bookstore::kNoSession, 6);
  EXPECT_EQ(bookstore::kLocalFailure, 7);
}

TEST_F(RunTest, EndsWith0WhenTheCommandIsDone) {
  EXPECT_EQ(run({"status"}), 0);
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(RunTest, EndsWith1WhenTheStoreAnsweredWithAnError) {
  EXPECT_EQ(runCommandThat([](Context&) {
              graphql::GraphQLStorageApi::ErrorInfo info;
              info.error = 1;
              info.message = "no such customer";
              bookstore::throwIfFailed(info, "https://de.example/graphql");
            }),
            1);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, AllOf(StartsWith("bookstore: https://de.example/graphql refused the request ("
                                    "no such customer). Correct "),
                         EndsWith("\n")));
}

TEST_F(RunTest, EndsWith2OnWrongUsage) {
  EXPECT_EQ(run({"stores", "--bogus"}), 2);
  EXPECT_THAT(err, AllOf(StartsWith("bookstore: the following"), HasSubstr("--bogus"),
                         HasSubstr(". Run \"bookstore stores --help\".\n")));
  EXPECT_EQ(run({"sing"}), 2);
  EXPECT_THAT(err, AllOf(HasSubstr("sing"), HasSubstr(". Run \"bookstore --help\".\n")));
  EXPECT_EQ(run({}), 2);
  EXPECT_EQ(err, "bookstore: a command is missing. Run \"bookstore --help\".\n");
  EXPECT_THAT(out, IsEmpty());
}

TEST_F(RunTest, EndsWith3WhenTheTransferFailed) {
  fake::platform().http.failTransfer(28);
  EXPECT_EQ(run({"stores", "--refresh"}), 3);
}

TEST_F(RunTest, EndsWith4WhenTheStatusIsNot200) {
  serverAnswers("", 500);
  EXPECT_EQ(run({"stores", "--refresh"}), 4);
}

TEST_F(RunTest, EndsWith5WhenTheAnswerLacksTheData) {
  serverAnswers("502 Bad Gateway");
  EXPECT_EQ(run({"stores", "--refresh"}), 5);
}

TEST_F(RunTest, EndsWith5OnAnExceptionOfTheJsonLibrary) {
  serverAnswers(std::string(2000, '['));
  EXPECT_EQ(run({"stores", "--refresh"}), 5);
  EXPECT_THAT(err, AllOf(StartsWith("bookstore: the store's response cannot be read ("),
                         HasSubstr(". Run the command again with -v")));
}

TEST_F(RunTest, EndsWith6WithoutAStore) {
  EXPECT_EQ(run({"stores"}), 6);
}

TEST_F(RunTest, EndsWith7OnAnyOtherException) {
  fake::platform().throwAt("CfgWrapper");
  EXPECT_EQ(run({"stores"}), 7);
  EXPECT_THAT(err, AllOf(StartsWith("bookstore: unexpected failure: CfgWrapper was arranged"),
                         HasSubstr(". Check the files below " + root.path())));
  EXPECT_EQ(runCommandThat([](Context&) { throw 1; }), 7);
  EXPECT_THAT(err, StartsWith("bookstore: unexpected failure: "));
}

TEST_F(RunTest, EndsWith7WhenTheOutputCannotBeWritten) {
  std::ostream broken(nullptr);
  std::ostringstream messages;
  EXPECT_EQ(bookstore::run({"status"}, {broken, messages, false, false}), 7);
  EXPECT_THAT(messages.str(), HasSubstr("cannot write to standard output"));
  std::ostream brokenToo(nullptr);
  EXPECT_EQ(bookstore::run({"--help"}, {brokenToo, messages, false, false}), 7);
}

// --- Help and version -------------------------------------------------------------------------

TEST_F(RunTest, HelpListsCommandsExitCodesAndSettings) {
  EXPECT_EQ(run({"--help"}), 0);
  for (const Command& command : bookstore::commands()) {
    if (command.name.find(' ') == std::string::npos) {
      EXPECT_THAT(out, AllOf(HasSubstr("  " + command.name + " "), HasSubstr(command.description)));
    }
  }
  for (const bookstore::ExitStatus& status : bookstore::exitStatuses()) {
    EXPECT_THAT(out, HasSubstr("\n  " + std::to_string(status.code) + "  " + status.meaning));
  }
  EXPECT_THAT(out, AllOf(HasSubstr("ORVANE_CA_FILE"), HasSubstr("NO_COLOR")));
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(RunTest, HelpOfACommandListsItsOptionsAndTheCommonOnes) {
  for (const Command& command : bookstore::commands()) {
    if (command.run == nullptr) {
      continue;
    }
    EXPECT_EQ(run(wordsOf(command.name + " --help")), 0);
    EXPECT_THAT(out, StartsWith(command.description));
    for (const auto* options : {&command.options, &bookstore::commonOptions()}) {
      for (const bookstore::Option& option : *options) {
        EXPECT_THAT(out, AllOf(HasSubstr(option.name), HasSubstr(option.description)));
      }
    }
  }
}

TEST_F(RunTest, HelpOfAGroupListsItsCommands) {
  for (const Command& command : bookstore::commands()) {
    const std::size_t blank = command.name.find(' ');
    if (blank != std::string::npos) {
      EXPECT_EQ(run({command.name.substr(0, blank), "--help"}), 0);
      EXPECT_THAT(out, AllOf(HasSubstr("  " + command.name.substr(blank + 1) + " "),
                             HasSubstr(command.description)));
    }
  }
}

TEST_F(RunTest, PrintsItsVersion) {
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_THAT(out, ::testing::MatchesRegex("bookstore [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

// --- The table of commands --------------------------------------------------------------------

TEST_F(RunTest, TakesCommandsInGroupsAndPositionalArguments) {
  const std::vector<Command> table = {
      {"sample", "The samples", Sends::Never, {}, nullptr},
      {"sample add",
       "Adds one",
       Sends::Never,
       {{"BOOK", "", "BOOK", {}, true, "The book"}, {"--path", "", "FILE", {}, false, "Where"}},
       [](Context& context) {
         context.output.print("added " + context.arguments.text("BOOK") + " " +
                              context.arguments.text("--path"));
       }},
      {"add", "Something else", Sends::Never, {}, [](Context&) {}}};
  EXPECT_EQ(run({"sample", "add", "b1", "--path", "/s/1"}, table), 0);
  EXPECT_EQ(out, "added b1 /s/1");
  EXPECT_EQ(run({"sample"}, table), 2);
  EXPECT_EQ(err, "bookstore: a command is missing. Run \"bookstore sample --help\".\n");
  EXPECT_EQ(run({"sample", "add"}, table), 2);
  EXPECT_EQ(run({"sample", "--help"}, table), 0);
  EXPECT_THAT(out, HasSubstr("Adds one"));
  EXPECT_EQ(run({"sample", "add", "--help"}, table), 0);
  EXPECT_THAT(out, AllOf(HasSubstr("\n  BOOK REQUIRED  "), HasSubstr("\n  --path FILE  ")));
}

TEST_F(RunTest, ACommandMayOnlyAskForOptionsOfItsRow) {
  EXPECT_EQ(runCommandThat([](Context& context) { context.arguments.has("--store"); }), 7);
}

// --- Options of every command -----------------------------------------------------------------

TEST_F(RunTest, DryRunPrintsTheRequestAndChangesNothing) {
  fileHolds({store("de", "de_de")});
  const auto before = fake::platform().config.files;
  EXPECT_EQ(run({"stores", "--refresh", "--dry-run", "--curl"}), 0);
  EXPECT_THAT(out, AllOf(StartsWith("curl https://"), HasSubstr("availableBookStores")));
  EXPECT_THAT(err, IsEmpty());
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
  EXPECT_EQ(fake::platform().config.files, before);
}

TEST_F(RunTest, DryRunEndsWithTheCommand) {
  run({"stores", "--refresh", "--dry-run", "--curl"});
  EXPECT_FALSE(base::isDryRun());
  run({"stores", "--refresh"});
  EXPECT_THAT(fake::platform().http.requests, SizeIs(1));
}

TEST_F(RunTest, DryRunGivesProgramsADocument) {
  EXPECT_EQ(run({"stores", "--refresh", "--dry-run", "--curl", "--json"}), 0);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_THAT(json()["curl"].asString(), StartsWith("curl https://"));
}

TEST_F(RunTest, DryRunMasksSecretsUnlessAsked) {
  const std::vector<Command> table = {{"work", "Sends", Sends::Always, {}, [](Context&) {
                                         throw base::DryRun("curl -H 'Authorization: Bearer abc'");
                                       }}};
  run({"work", "--dry-run", "--curl"}, table);
  EXPECT_EQ(out, "curl -H 'Authorization: Bearer ***'\n");
  run({"work", "--dry-run", "--curl", "--show-secrets"}, table);
  EXPECT_EQ(out, "curl -H 'Authorization: Bearer abc'\n");
}

TEST_F(RunTest, DryRunIsWrongUsageWhereNothingIsSent) {
  EXPECT_EQ(run({"status", "--dry-run", "--curl"}), 2);
  EXPECT_THAT(err, HasSubstr("\"status\" sends no request. Omit --dry-run and --curl."));
  EXPECT_EQ(run({"stores", "--dry-run", "--curl"}), 2);
  EXPECT_THAT(err, HasSubstr("\"stores\" sends a request only with --refresh"));
}

TEST_F(RunTest, DryRunAndCurlGoTogether) {
  EXPECT_EQ(run({"stores", "--refresh", "--dry-run"}), 2);
  EXPECT_THAT(err, HasSubstr("--dry-run and --curl must be used together"));
  EXPECT_EQ(run({"stores", "--refresh", "--curl"}), 2);
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(RunTest, VerboseRaisesTheLogLevelBeforeTheLibraryIsCalled) {
  static std::string levelSeen;
  const std::vector<Command> table = {{"work", "Looks", Sends::Never, {}, [](Context&) {
                                         levelSeen = ::getenv("ORVANE_LOG_LEVEL");
                                       }}};
  run({"work"}, table);
  EXPECT_EQ(levelSeen, "");
  run({"work", "-v"}, table);
  EXPECT_EQ(levelSeen, "5");
}

TEST_F(RunTest, VerboseNeverLowersTheLogLevel) {
  const support::ScopedSetting level("ORVANE_LOG_LEVEL", "7");
  run({"status", "--verbose"});
  EXPECT_STREQ(::getenv("ORVANE_LOG_LEVEL"), "7");
}

TEST_F(RunTest, ShowingSecretsHoldsForTheLogToo) {
  run({"status"});
  EXPECT_STREQ(::getenv("ORVANE_LOG_SECRETS"), "");
  run({"status", "--show-secrets"});
  EXPECT_STREQ(::getenv("ORVANE_LOG_SECRETS"), "1");
}

// --- Messages ---------------------------------------------------------------------------------

TEST_F(RunTest, AFailureIsOneLineWithoutSecretsAndControlCharacters) {
  const auto refuse = [](Context&) {
    throw bookstore::Failure(bookstore::kStoreRefused, "Bearer abc\033[2J\nand more", "nothing");
  };
  EXPECT_EQ(runCommandThat(refuse), 1);
  EXPECT_THAT(err, AllOf(Not(HasSubstr("abc")), Not(HasSubstr("\033")), HasSubstr("\\n"),
                         EndsWith(". nothing.\n")));
}

TEST_F(RunTest, ColoursTitlesAndMessagesOnATerminalOnly) {
  fileHolds({store("de", "de_de")});
  run({"stores"});
  EXPECT_THAT(out, Not(HasSubstr("\033")));
  run({"sing"});
  EXPECT_THAT(err, Not(HasSubstr("\033")));
  outIsTerminal = true;
  run({"stores"});
  EXPECT_THAT(out, StartsWith("\033[1m"));
  run({"sing"});
  EXPECT_THAT(err, Not(HasSubstr("\033")));
  outIsTerminal = false;
  errIsTerminal = true;
  run({"stores"});
  EXPECT_THAT(out, Not(HasSubstr("\033")));
  run({"sing"});
  EXPECT_THAT(err, StartsWith("\033[1;31mbookstore:\033[0m "));
}

TEST_F(RunTest, UsesNoColourWhereThePersonOrTheTerminalHasNone) {
  fileHolds({store("de", "de_de")});
  outIsTerminal = true;
  errIsTerminal = true;
  for (const auto& setting : {std::make_pair("NO_COLOR", "1"), std::make_pair("TERM", "dumb"),
                              std::make_pair("TERM", "")}) {
    const support::ScopedSetting without(setting.first, setting.second);
    run({"stores"});
    EXPECT_THAT(out, Not(HasSubstr("\033")));
    run({"sing"});
    EXPECT_THAT(err, Not(HasSubstr("\033")));
  }
}

TEST_F(RunTest, NeverColoursADocument) {
  outIsTerminal = true;
  run({"status", "--json"});
  EXPECT_THAT(out, Not(HasSubstr("\033")));
}

TEST_F(RunTest, SpinsWhileARequestIsUnderWayAndCleansTheLineBeforeTheMessage) {
  errIsTerminal = true;
  run({"stores", "--refresh"});
  EXPECT_THAT(err, StartsWith("| Asking the store\r"));
  EXPECT_THAT(err, HasSubstr("\r\033[K\033[1;31mbookstore:"));
  errIsTerminal = false;
  run({"stores", "--refresh"});
  EXPECT_THAT(err, StartsWith("bookstore:"));
}

TEST_F(RunTest, DoesNotSpinWhereTheLogIsShown) {
  errIsTerminal = true;
  run({"stores", "--refresh", "-v"});
  EXPECT_THAT(err, Not(HasSubstr("Asking the store")));
}
