// Texts of a customer that go to the store. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_CUSTOMERTEXT_H_
#define BOOKSTORE_COMMANDS_CUSTOMERTEXT_H_

#include <string>

#include "bookstore/Command.h"

namespace bookstore {

// Throws Failure unless a request can carry `text` unchanged: UTF-8 without NUL. `name` says what
// it is; the text itself is not shown.
void requireSendable(const std::string& name, const std::string& text);

// The text that was given with an option such as "--first-name". Throws Failure as above.
std::string sendableText(const Arguments& arguments, const std::string& option);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_CUSTOMERTEXT_H_
