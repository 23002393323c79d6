// Asks the person at the terminal for a text that must not show there. For the main thread, while
// the process has no other one.

#ifndef BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_
#define BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_

#include <string>

namespace bookstore {

// Shows `question` on the terminal of the process, whatever its standard streams are, and returns
// the line that is typed, without the line end. Echo is off meanwhile and back on however it ends,
// signals such as that of Ctrl-C included: they take effect right after. Throws Failure when there
// is no terminal or no line.
std::string askForPassword(const std::string& question);

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_
