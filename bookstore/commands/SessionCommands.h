// The commands that use or end the customer's session.

#ifndef BOOKSTORE_COMMANDS_SESSIONCOMMANDS_H_
#define BOOKSTORE_COMMANDS_SESSIONCOMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore whoami: prints who is signed in.
void runWhoami(Context& context);

// bookstore refresh: exchanges the refresh token for new tokens.
void runRefresh(Context& context);

// bookstore sign-out: empties the stored tokens.
void runSignOut(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SESSIONCOMMANDS_H_
