// Where a command's password comes from: never from its arguments, which other users of the machine
// can see. For the main thread of a process without other threads.

#ifndef BOOKSTORE_COMMANDS_PASSWORD_H_
#define BOOKSTORE_COMMANDS_PASSWORD_H_

#include <string>
#include <vector>

#include "bookstore/Command.h"

namespace bookstore {

// --password-stdin and --password-fd, for the rows of commands that take a password.
std::vector<Option> passwordOptions();

enum class PasswordKind { Known, New };

// Reads the password from the descriptor that the options name, up to its end, and removes one line
// feed. Without such an option, prompts for it on the terminal, twice when it is new. Throws
// Failure when there is no password, or when a request cannot carry it.
std::string readPassword(const Arguments& arguments, PasswordKind kind);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_PASSWORD_H_
