#include <unistd.h>

#include <csignal>
#include <iostream>

#include "bookstore/Run.h"
#include "bookstore/terminal/Terminal.h"

int main(int argc, char** argv) {
  bookstore::occupyStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);  // write() then fails when the reader has gone
  const bookstore::Terminal terminal = {std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1,
                                        ::isatty(STDERR_FILENO) == 1};
  return bookstore::run({argv + 1, argv + argc}, terminal);
}
