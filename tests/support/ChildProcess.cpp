#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace support {

namespace {

std::string readAll(int descriptor) {
  std::string text;
  char piece[4096];
  for (ssize_t length = 0; (length = ::read(descriptor, piece, sizeof(piece))) > 0;) {
    text.append(piece, static_cast<std::size_t>(length));
  }
  ::close(descriptor);
  return text;
}

// A descriptor from which `text` is read.
int readable(const std::string& text) {
  char name[] = "/tmp/program-input-XXXXXX";
  const int descriptor = ::mkostemp(name, O_CLOEXEC);
  ::unlink(name);
  if (descriptor < 0 ||
      ::write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("cannot write a temporary file");
  }
  ::lseek(descriptor, 0, SEEK_SET);
  return descriptor;
}

}  // namespace

pid_t start(const std::vector<std::string>& command, int input, int output, int error) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    if (error >= 0) {
      ::dup2(error, STDERR_FILENO);
    }
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
  }
  if (child < 0) {
    throw std::runtime_error("cannot start a process for " + command[0]);
  }
  return child;
}

int codeOf(pid_t child) {
  int status = -1;
  if (::waitpid(child, &status, 0) != child) {
    throw std::runtime_error("process " + std::to_string(child) + " is not a child of this one");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Ended runReading(int input, const std::vector<std::string>& command) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::runtime_error("cannot make a pipe");
  }
  const pid_t child = start(command, input, ends[1], ends[1]);
  ::close(ends[1]);
  Ended ended;
  ended.output = readAll(ends[0]);
  ended.code = codeOf(child);
  return ended;
}

Ended run(const std::vector<std::string>& command, const std::string& input) {
  const int descriptor = readable(input);
  const Ended ended = runReading(descriptor, command);
  ::close(descriptor);
  return ended;
}

std::string outputOf(const std::vector<std::string>& command, const std::string& input) {
  const Ended ended = run(command, input);
  if (ended.code != 0) {
    throw std::runtime_error(command[0] + " ended with " + std::to_string(ended.code) + ": " +
                             ended.output);
  }
  return ended.output;
}

std::string outputOfShell(const std::string& line) {
  return outputOf({"sh", "-c", line});
}

Lifeline::Lifeline() {
  if (::pipe2(ends_, O_CLOEXEC) != 0) {
    throw std::runtime_error("cannot make a pipe");
  }
}

Lifeline::~Lifeline() {
  ::close(ends_[0]);
  ::close(ends_[1]);
}

}  // namespace support
