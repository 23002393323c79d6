// The streams that the program writes to, and what a terminal can show. Used by one thread.

#ifndef BOOKSTORE_TERMINAL_TERMINAL_H_
#define BOOKSTORE_TERMINAL_TERMINAL_H_

#include <ostream>

namespace bookstore {

struct Terminal {
  std::ostream& out;  // data
  std::ostream& err;  // messages
  bool outIsTerminal;
  bool errIsTerminal;
};

// True if the terminal can move its cursor: TERM is set, and not to "dumb".
bool movesCursor();

// True if output is coloured: the terminal can move its cursor, and NO_COLOR is unset or empty.
bool wantsColor();

// Opens a descriptor that fails for each standard stream that the caller closed. Otherwise a file
// or connection that is opened later gets the stream's number, and receives the stream's text.
// Called by the main thread, before anything else.
void occupyStandardStreams();

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_TERMINAL_H_
