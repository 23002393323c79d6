#include "bookstore/terminal/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace bookstore {

void occupyStandardStreams() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) == -1) {
      // The lowest number that is free is this one.
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace bookstore
