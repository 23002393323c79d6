#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "bookstore/Run.h"

namespace {

// A standard stream that the caller closed gets a descriptor on which it fails, so that no file or
// connection opened later takes its number and receives what was meant for the stream.
void occupyStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) == -1) {
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardDescriptors();
  std::signal(SIGPIPE, SIG_IGN);  // a reader that is gone is an error of the write
  const bookstore::Terminal terminal = {std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1,
                                        ::isatty(STDERR_FILENO) == 1};
  return bookstore::run({argv + 1, argv + argc}, terminal);
}
