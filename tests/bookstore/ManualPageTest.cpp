// The manual page tells everything that the tables hold.

#include <fstream>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bookstore/Commands.h"
#include "bookstore/ExitCode.h"

using ::testing::HasSubstr;

namespace {

class ManualPageTest : public ::testing::Test {
 protected:
  // The text of the page from this heading to the next one.
  static std::string section(const std::string& title) {
    std::ifstream in(MANUAL_PAGE);
    const std::string page{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::size_t start = page.find("\n## " + title + "\n");
    return start == std::string::npos ? ""
                                      : page.substr(start, page.find("\n## ", start + 1) - start);
  }

  static void expectOption(const std::string& text, const bookstore::Option& option) {
    std::string heading = option.shortName.empty() ? "" : option.shortName + ", ";
    const bool isPositional = option.name.front() != '-';
    heading += option.name + (option.value.empty() || isPositional ? "" : " " + option.value);
    EXPECT_THAT(text, HasSubstr("`" + heading + "`"));
    for (const std::string& choice : option.choices) {
      EXPECT_THAT(text, HasSubstr("`" + choice + "`"));
    }
  }
};

}  // namespace

TEST_F(ManualPageTest, HasTheFixedSections) {
  for (const char* title : {"Name", "Synopsis", "Commands", "Options", "Output", "Exit status",
                            "Environment", "Examples"}) {
    EXPECT_NE(section(title), "") << title;
  }
}

TEST_F(ManualPageTest, TellsEveryCommandAndItsOptions) {
  for (const bookstore::Command& command : bookstore::commands()) {
    const std::string commands = section("Commands");
    const std::size_t start = commands.find("\n### bookstore " + command.name + "\n");
    ASSERT_NE(start, std::string::npos) << command.name;
    const std::string text = commands.substr(start, commands.find("\n### ", start + 1) - start);
    EXPECT_THAT(section("Synopsis"), HasSubstr("bookstore " + command.name));
    for (const bookstore::Option& option : command.options) {
      expectOption(text, option);
    }
  }
}

TEST_F(ManualPageTest, TellsEveryCommonOption) {
  const std::string text = section("Options");
  for (const bookstore::Option& option : bookstore::commonOptions()) {
    expectOption(text, option);
  }
  expectOption(text, bookstore::helpOption());
  expectOption(text, bookstore::versionOption());
}

TEST_F(ManualPageTest, TellsEveryExitCode) {
  for (const bookstore::ExitStatus& status : bookstore::exitStatuses()) {
    EXPECT_THAT(section("Exit status"),
                HasSubstr("| " + std::to_string(status.code) + " | " + status.meaning + " |"));
  }
}
