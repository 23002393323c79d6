// The command that shows the state of the device.

#ifndef BOOKSTORE_COMMANDS_STATUSCOMMAND_H_
#define BOOKSTORE_COMMANDS_STATUSCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore status: prints files, current store, session and identity.
void runStatus(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_STATUSCOMMAND_H_
