#include "bookstore/Completion.h"

#include "tests/bookstore/BookstoreTest.h"

using bookstore::Command;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class CompletionTest : public bookstore_tests::BookstoreTest {
 protected:
  static void doNothing(bookstore::Context&) {}

  // The three scripts for a table with this one command.
  static std::vector<std::string> scriptsOf(const Command& command) {
    const std::vector<Command> table = {command};
    return {bookstore::bashCompletion(table), bookstore::zshCompletion(table),
            bookstore::fishCompletion(table)};
  }
};

}  // namespace

TEST_F(CompletionTest, EachScriptHoldsEveryCommandOptionAndChoice) {
  for (const char* shell : {"bash", "zsh", "fish"}) {
    EXPECT_EQ(run({"completion", shell}), bookstore::kDone);
    EXPECT_THAT(err, IsEmpty());
    const bool isFish = std::string(shell) == "fish";
    for (const Command& command : bookstore::commands()) {
      EXPECT_THAT(out, HasSubstr(command.name.substr(command.name.rfind(' ') + 1))) << shell;
      for (const auto* options : {&command.options, &bookstore::commonOptions()}) {
        for (const bookstore::Option& option : *options) {
          // fish has the names without their dashes; an argument's name is for people only.
          if (option.name.front() == '-') {
            EXPECT_THAT(out, HasSubstr((isFish ? "-l " : "--") + option.name.substr(2)));
          }
          for (const std::string& choice : option.choices) {
            EXPECT_THAT(out, HasSubstr(choice)) << shell;
          }
        }
      }
    }
  }
}

TEST_F(CompletionTest, GivesProgramsTheScriptAsAText) {
  EXPECT_EQ(run({"completion", "fish", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["shell"], "fish");
  EXPECT_EQ(json()["script"], bookstore::fishCompletion(bookstore::commands()));
}

TEST_F(CompletionTest, AnotherShellIsWrongUse) {
  EXPECT_EQ(run({"completion", "tcsh"}), bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("tcsh"));
  EXPECT_EQ(run({"completion"}), bookstore::kUsage);
}

TEST_F(CompletionTest, SendsNothingAndSoHasNoRequestToShow) {
  EXPECT_EQ(run({"completion", "bash", "--dry-run", "--curl"}), bookstore::kUsage);
}

TEST_F(CompletionTest, AnOptionForAFileCompletesFiles) {
  const auto scripts = scriptsOf({"send",
                                  "Send",
                                  bookstore::Sends::Never,
                                  {{"--body", "", "FILE", {}, false, "The body"}},
                                  doNothing});
  EXPECT_THAT(scripts[0], HasSubstr("'send --body') words='' files=yes ;;"));
  EXPECT_THAT(scripts[1], HasSubstr("'--body=[The body]:FILE:_files'"));
  EXPECT_THAT(scripts[2], HasSubstr("'__bookstore_at send' -l body -r -F -d 'The body'"));
}

TEST_F(CompletionTest, WhatMeansSomethingToAShellIsQuoted) {
  const auto scripts = scriptsOf({"send",
                                  "It's sent",
                                  bookstore::Sends::Never,
                                  {{"--to", "-t", "WHO", {"me"}, false, "Mine [not \\ 'yours']"}},
                                  doNothing});
  EXPECT_THAT(scripts[1], AllOf(HasSubstr("'send:It'\\''s sent'"),
                                HasSubstr("'(-t --to)'{-t,--to=}'[Mine \\[not \\ "
                                          "'\\''yours'\\''\\]]:WHO:(me)'")));
  EXPECT_THAT(scripts[2],
              AllOf(HasSubstr("'It\\'s sent'"),
                    HasSubstr("-l to -s t -x -a 'me' -d 'Mine [not \\\\ \\'yours\\']'")));
}

TEST_F(CompletionTest, AnOptionWithAShortNameTakesItsValueAfterBoth) {
  const auto scripts = scriptsOf({"send",
                                  "Send",
                                  bookstore::Sends::Never,
                                  {{"--to", "-t", "WHO", {"me", "you"}, false, "Who"}},
                                  doNothing});
  EXPECT_THAT(scripts[0], HasSubstr("'send -t' | 'send --to') words='me you' files='' ;;"));
}
