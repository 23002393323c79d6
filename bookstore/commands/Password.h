// Where a command's password comes from: never from its arguments, which other users of the machine
// can see. For the main thread, while the process has no other one.

#ifndef BOOKSTORE_COMMANDS_PASSWORD_H_
#define BOOKSTORE_COMMANDS_PASSWORD_H_

#include <string>
#include <vector>

#include "bookstore/Command.h"

namespace bookstore {

// --password-stdin and --password-fd, for the rows of commands that take a password.
std::vector<Option> passwordOptions();

enum class PasswordKind { Known, New };

// Reads the password from where the options say, up to the end, and takes one line feed off; else
// asks for it at the terminal without echo, twice when it is new. Throws Failure when there is
// none, or none that a request can carry.
std::string readPassword(const Arguments& arguments, PasswordKind kind);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_PASSWORD_H_
