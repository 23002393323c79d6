// Checks the texts of the command line that a request carries. Holds no state; safe from any
// thread.

#ifndef BOOKSTORE_COMMANDS_VALIDATION_H_
#define BOOKSTORE_COMMANDS_VALIDATION_H_

#include <string>

#include "bookstore/Command.h"

namespace bookstore {

// Throws Failure unless a request can carry `text` unchanged: UTF-8 without NUL. `name` says what
// it is; the text itself is not shown.
void requireUtf8(const std::string& name, const std::string& text);

// The text that was given with an option such as "--first-name". Throws Failure as above.
std::string utf8Option(const Arguments& arguments, const std::string& option);

// The book that was given as BOOK. Throws Failure unless base::isValidBookId().
std::string validBookId(const Arguments& arguments);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_VALIDATION_H_
