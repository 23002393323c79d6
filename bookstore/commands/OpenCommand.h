// The command that shows the store to the signed-in customer.

#ifndef BOOKSTORE_COMMANDS_OPENCOMMAND_H_
#define BOOKSTORE_COMMANDS_OPENCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore open: starts a browser and waits until it is closed.
void runOpen(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_OPENCOMMAND_H_
