// Programs that a test runs, without a shell.

#ifndef TESTS_SUPPORT_CHILDPROCESS_H_
#define TESTS_SUPPORT_CHILDPROCESS_H_

#include <sys/types.h>

#include <string>
#include <vector>

namespace support {

// How a program ended.
struct Ended {
  int code = -1;       // exit status, or 128 and the number of the signal that ended it
  std::string output;  // standard output and standard error
};

// Runs a command to its end. It reads `input`, by default nothing. Code 127 says that it cannot be
// started. Throws std::runtime_error when the system denies a pipe or a process. From any thread.
Ended run(const std::vector<std::string>& command, const std::string& input = "");

// The same, with `input`, an open descriptor, as standard input.
Ended runReading(int input, const std::vector<std::string>& command);

// The output of a command that has to succeed: throws std::runtime_error with the output, too, when
// its code is not 0.
std::string outputOf(const std::vector<std::string>& command, const std::string& input = "");

// The same for a line of shell text.
std::string outputOfShell(const std::string& line);

// Starts a command with these descriptors as standard input and output, and as standard error
// where `error` is not -1. The caller waits for its end.
pid_t start(const std::vector<std::string>& command, int input, int output, int error = -1);

// Waits for the end of a child. Returns its code as Ended has it.
int codeOf(pid_t child);

// A pipe that tells a child when this process ends, however it does: standard input of the child is
// then at its end.
class Lifeline {
 public:
  Lifeline();
  ~Lifeline();

  Lifeline(const Lifeline&) = delete;
  Lifeline& operator=(const Lifeline&) = delete;

  // The end for the child's standard input. This object owns it.
  int childEnd() const { return ends_[0]; }

 private:
  int ends_[2] = {-1, -1};
};

}  // namespace support

#endif  // TESTS_SUPPORT_CHILDPROCESS_H_
