// Where the program writes, and what a person's terminal there can show. Used by one thread.

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

// True when the terminal moves its cursor where it is told: TERM is set and not "dumb".
bool movesCursor();

// True when the person wants colour: the terminal can, and NO_COLOR is unset or empty.
bool wantsColor();

// Gives each standard stream that the caller closed a descriptor on which it fails, so that no file
// or connection opened later takes its number and receives what was meant for the stream. For the
// main thread, before anything else.
void occupyStandardStreams();

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_TERMINAL_H_
