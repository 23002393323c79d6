// The command that shows what a request carries.

#ifndef BOOKSTORE_COMMANDS_HEADERSCOMMAND_H_
#define BOOKSTORE_COMMANDS_HEADERSCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore headers: prints the headers of a request to a store.
void runHeaders(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_HEADERSCOMMAND_H_
