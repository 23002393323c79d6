// The command that begins a session.

#ifndef BOOKSTORE_COMMANDS_SIGNINCOMMAND_H_
#define BOOKSTORE_COMMANDS_SIGNINCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore sign-in: signs a customer in to a store.
void runSignIn(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SIGNINCOMMAND_H_
