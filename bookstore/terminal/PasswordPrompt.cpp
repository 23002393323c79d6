#include "bookstore/terminal/PasswordPrompt.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <system_error>

#include "base/BlockedSignals.h"
#include "base/WholeFile.h"
#include "bookstore/Failure.h"

namespace bookstore {

namespace {

using Wakeup = base::BlockedSignals::Wakeup;

Failure terminalFailure(const std::string& what) {
  return Failure(kUsage, what + ": " + std::generic_category().message(errno),
                 "Use --password-stdin or --password-fd");
}

// The terminal does not show what is typed while the object lives.
class EchoOff {
 public:
  explicit EchoOff(int terminal) : terminal_(terminal), before_() {
    if (::tcgetattr(terminal_, &before_) != 0) {
      throw terminalFailure("cannot read the terminal's settings");
    }
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    if (::tcsetattr(terminal_, TCSAFLUSH, &silent) != 0) {
      throw terminalFailure("cannot turn off the terminal's echo");
    }
  }
  ~EchoOff() { ::tcsetattr(terminal_, TCSAFLUSH, &before_); }

  EchoOff(const EchoOff&) = delete;
  EchoOff& operator=(const EchoOff&) = delete;

 private:
  int terminal_;
  termios before_;
};

// If this fails, the next read fails, too.
void show(int terminal, const std::string& text) {
  [[maybe_unused]] const ssize_t written = ::write(terminal, text.data(), text.size());
}

// The line that is typed; none when a signal arrives first.
std::optional<std::string> readLine(int terminal, const base::BlockedSignals& signals) {
  std::string line;
  while (signals.wait(base::BlockedSignals::kForever, terminal) != Wakeup::Signal) {
    char byte = 0;
    const ssize_t count = ::read(terminal, &byte, 1);
    if (count < 0 && errno != EINTR) {
      throw terminalFailure("cannot read from the terminal");
    }
    if (count == 0 || (count > 0 && byte == '\n')) {
      return line;
    }
    if (count > 0) {
      line += byte;
    }
  }
  return std::nullopt;
}

// The order of the objects matters: the echo is restored before the signals take effect.
std::optional<std::string> askOnce(int terminal, const std::string& prompt) {
  const base::BlockedSignals signals({SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP});
  const EchoOff echoOff(terminal);
  show(terminal, prompt);
  std::optional<std::string> line = readLine(terminal, signals);
  show(terminal, "\n");
  return line;
}

}  // namespace

std::string askForPassword(const std::string& prompt) {
  const base::Descriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!terminal.isOpen()) {
    throw terminalFailure("there is no terminal for the password prompt");
  }
  for (;;) {
    // Prompts again when the process continues after a signal that stopped it.
    if (const std::optional<std::string> line = askOnce(terminal.get(), prompt)) {
      return *line;
    }
  }
}

}  // namespace bookstore
