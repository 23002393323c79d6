// Where passwords come from; what is typed at a terminal is tested end to end.

#include <fcntl.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/Password.h"
#include "tests/bookstore/CustomerTest.h"
#include "tests/support/NewProcess.h"

using bookstore::Failure;
using bookstore::PasswordKind;
using ::testing::HasSubstr;

namespace {

class PasswordTest : public ::testing::Test {
 protected:
  PasswordTest() {
    arguments.declare("--password-stdin");
    arguments.declare("--password-fd");
  }

  std::string read(PasswordKind kind = PasswordKind::Known) {
    return bookstore::readPassword(arguments, kind);
  }

  std::string readFrom(const std::string& text) {
    const base::Descriptor descriptor(bookstore_tests::readable(text));
    arguments.set("--password-fd", std::to_string(descriptor.get()));
    return read();
  }

  void expectRefused(const std::string& message) {
    try {
      read();
      FAIL() << "it was taken";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), bookstore::kUsage);
      EXPECT_THAT(failure.what(), HasSubstr(message));
    }
  }

  bookstore::Arguments arguments;
};

}  // namespace

TEST_F(PasswordTest, TakesOneLineFeedOff) {
  EXPECT_EQ(readFrom("secret"), "secret");
  EXPECT_EQ(readFrom("secret\n"), "secret");
  EXPECT_EQ(readFrom("secret\n\n"), "secret\n");
  EXPECT_EQ(readFrom(" se\ncret \r\n"), " se\ncret \r");
}

TEST_F(PasswordTest, ReadsToTheEndHoweverLongItIs) {
  const std::string text(50000, 'x');
  EXPECT_EQ(readFrom(text), text);
}

TEST_F(PasswordTest, IsNeverEmpty) {
  EXPECT_THROW(readFrom(""), Failure);
  EXPECT_THROW(readFrom("\n"), Failure);
}

TEST_F(PasswordTest, ReadsStandardInput) {
  EXPECT_TRUE(support::passesInNewProcess([this] {
    ::dup2(bookstore_tests::readable("secret\n"), STDIN_FILENO);
    arguments.set("--password-stdin", "");
    EXPECT_EQ(read(PasswordKind::New), "secret");
  }));
}

TEST_F(PasswordTest, RefusesWhatIsNoDescriptor) {
  for (const char* text : {"", "x", "3x", "-1", " 3", "99999999999"}) {
    arguments.set("--password-fd", text);
    expectRefused("\"" + std::string(text) + "\" is not a file descriptor");
  }
  arguments.set("--password-fd", "987");
  expectRefused("cannot read file descriptor 987: Bad file descriptor");
}

TEST_F(PasswordTest, RefusesTwoSources) {
  arguments.set("--password-stdin", "");
  arguments.set("--password-fd", "3");
  expectRefused("cannot be used together");
}

TEST_F(PasswordTest, RefusesAFileThatIsNoPassword) {
  const base::Descriptor endless(::open("/dev/zero", O_RDONLY));
  arguments.set("--password-fd", std::to_string(endless.get()));
  expectRefused("the input has more than 1 MiB");
}

TEST_F(PasswordTest, RefusesATerminalThatWouldShowIt) {
  const base::Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
  arguments.set("--password-fd", std::to_string(master.get()));
  expectRefused("is a terminal, which would show the password");
}

TEST_F(PasswordTest, NeedsATerminalToAskOn) {
  EXPECT_TRUE(support::passesInNewProcess([this] {
    ::setsid();
    expectRefused("there is no terminal for the password prompt");
  }));
}
