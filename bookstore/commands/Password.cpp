#include "bookstore/commands/Password.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <system_error>

#include "bookstore/Failure.h"
#include "bookstore/commands/Validation.h"
#include "bookstore/terminal/PasswordPrompt.h"

namespace bookstore {

namespace {

constexpr std::size_t kLongest = 1 << 20;  // far more than any store accepts

int parseDescriptor(const std::string& text) {
  int descriptor = -1;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, descriptor);
  if (error != std::errc() || stop != end || descriptor < 0) {
    throw Failure(kUsage, "\"" + text + "\" is not a file descriptor", "Use a number, such as 3");
  }
  return descriptor;
}

// The descriptor to read from; none when the person is to be prompted.
std::optional<int> givenDescriptor(const Arguments& arguments) {
  if (arguments.has("--password-stdin") && arguments.has("--password-fd")) {
    throw Failure(kUsage, "--password-stdin and --password-fd cannot be used together",
                  "Omit one of them");
  }
  if (arguments.has("--password-stdin")) {
    return STDIN_FILENO;
  }
  if (arguments.has("--password-fd")) {
    return parseDescriptor(arguments.text("--password-fd"));
  }
  return std::nullopt;
}

std::string readToTheEnd(int descriptor) {
  const std::string name = "file descriptor " + std::to_string(descriptor);
  if (::isatty(descriptor) == 1) {
    throw Failure(kUsage, name + " is a terminal, which would show the password",
                  "Omit the option: the command then prompts without echo");
  }
  std::string text;
  std::array<char, 4096> piece = {};
  for (ssize_t count = 1; count != 0;) {
    count = ::read(descriptor, piece.data(), piece.size());
    if (count < 0 && errno != EINTR) {
      throw Failure(kUsage, "cannot read " + name + ": " + std::generic_category().message(errno),
                    "Open it for reading, as in 3<FILE");
    }
    text.append(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    if (text.size() > kLongest) {
      throw Failure(kUsage, "the input has more than 1 MiB",
                    "Use a file that contains only the password");
    }
  }
  if (!text.empty() && text.back() == '\n') {
    text.pop_back();
  }
  return text;
}

std::string prompt(PasswordKind kind) {
  std::string password = askForPassword("Password: ");
  if (kind == PasswordKind::New && askForPassword("Password again: ") != password) {
    throw Failure(kUsage, "the two passwords differ", "Type the same password twice");
  }
  return password;
}

}  // namespace

std::vector<Option> passwordOptions() {
  return {{"--password-stdin", "", "", {}, false, "Read the password from standard input"},
          {"--password-fd", "", "N", {}, false, "Read the password from file descriptor N"}};
}

std::string readPassword(const Arguments& arguments, PasswordKind kind) {
  const std::optional<int> descriptor = givenDescriptor(arguments);
  std::string password = descriptor ? readToTheEnd(*descriptor) : prompt(kind);
  if (password.empty()) {
    throw Failure(kUsage, "the password is empty", "Enter at least one character");
  }
  requireUtf8("password", password);
  return password;
}

}  // namespace bookstore
