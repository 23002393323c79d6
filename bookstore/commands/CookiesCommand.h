// The command that prints the session for other programs.

#ifndef BOOKSTORE_COMMANDS_COOKIESCOMMAND_H_
#define BOOKSTORE_COMMANDS_COOKIESCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore cookies: prints the cookies of the signed-in customer.
void runCookies(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_COOKIESCOMMAND_H_
