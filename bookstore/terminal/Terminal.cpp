#include "bookstore/terminal/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "base/Settings.h"

namespace bookstore {

bool movesCursor() {
  const std::string kind = base::environmentText("TERM");
  return !kind.empty() && kind != "dumb";
}

bool wantsColor() {
  return movesCursor() && base::environmentText("NO_COLOR").empty();
}

void occupyStandardStreams() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) == -1) {
      // open() takes the lowest free number, which is this one.
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace bookstore
