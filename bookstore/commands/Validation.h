// Checks the texts of the command line that a request carries. Holds no state; safe from any
// thread.

#ifndef BOOKSTORE_COMMANDS_VALIDATION_H_
#define BOOKSTORE_COMMANDS_VALIDATION_H_

#include <string>

#include "bookstore/Command.h"

namespace bookstore {

// Throws Failure unless `text` is UTF-8 without NUL, which a request can carry unchanged. The
// message shows `name` and never the text.
void requireUtf8(const std::string& name, const std::string& text);

// The value of an option such as "--first-name". Throws Failure as above.
std::string utf8Option(const Arguments& arguments, const std::string& option);

// The argument BOOK. Throws Failure unless base::isValidBookId().
std::string validBookId(const Arguments& arguments);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_VALIDATION_H_
