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
                 "hand the password over with --password-stdin or --password-fd");
}

// The terminal shows nothing that is typed while the object lives.
class Silence {
 public:
  explicit Silence(int terminal) : terminal_(terminal), before_() {
    if (::tcgetattr(terminal_, &before_) != 0) {
      throw terminalFailure("the terminal does not tell its settings");
    }
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    if (::tcsetattr(terminal_, TCSAFLUSH, &silent) != 0) {
      throw terminalFailure("the terminal does not switch its echo off");
    }
  }
  ~Silence() { ::tcsetattr(terminal_, TCSAFLUSH, &before_); }

  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int terminal_;
  termios before_;
};

// A terminal that does not take the text shows in the read that follows.
void show(int terminal, const std::string& text) {
  [[maybe_unused]] const ssize_t written = ::write(terminal, text.data(), text.size());
}

// The line that is typed; nothing when a signal came first.
std::optional<std::string> readLine(int terminal, const base::BlockedSignals& signals) {
  std::string line;
  while (signals.wait(base::BlockedSignals::kForever, terminal) != Wakeup::Signal) {
    char byte = 0;
    const ssize_t count = ::read(terminal, &byte, 1);
    if (count < 0 && errno != EINTR) {
      throw terminalFailure("the terminal cannot be read");
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

// The objects end in this order: first the echo is back, then the signals take effect.
std::optional<std::string> askOnce(int terminal, const std::string& question) {
  const base::BlockedSignals signals({SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP});
  const Silence silence(terminal);
  show(terminal, question);
  std::optional<std::string> line = readLine(terminal, signals);
  show(terminal, "\n");
  return line;
}

}  // namespace

std::string askForPassword(const std::string& question) {
  const base::Descriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!terminal.isOpen()) {
    throw terminalFailure("there is no terminal to ask on");
  }
  for (;;) {
    // Asked again when the process goes on after a signal: it was only stopped.
    if (const std::optional<std::string> line = askOnce(terminal.get(), question)) {
      return *line;
    }
  }
}

}  // namespace bookstore
