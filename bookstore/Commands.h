// The functions of the commands, each in a file of its own: reads the arguments of its row, prints
// its result, throws Failure when it has none.

#ifndef BOOKSTORE_COMMANDS_H_
#define BOOKSTORE_COMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

void runHeaders(Context& context);
void runStatus(Context& context);
void runStores(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_H_
