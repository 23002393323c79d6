// Prompts for a password without echo. For the main thread of a process without other threads.

#ifndef BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_
#define BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_

#include <string>

namespace bookstore {

// Shows `prompt` on the terminal of the process, whatever its standard streams are, and returns the
// line that is typed, without the line end. The echo is restored in every case, also before a
// signal such as that of Ctrl-C takes effect. Throws Failure when there is no terminal or no line.
std::string askForPassword(const std::string& prompt);

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_PASSWORDPROMPT_H_
