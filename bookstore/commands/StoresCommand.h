// The command that lists the regional stores.

#ifndef BOOKSTORE_COMMANDS_STORESCOMMAND_H_
#define BOOKSTORE_COMMANDS_STORESCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore stores: prints the stores of the file, or of the store service.
void runStores(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_STORESCOMMAND_H_
