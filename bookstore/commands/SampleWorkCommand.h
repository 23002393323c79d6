// The command that does the background application's work.

#ifndef BOOKSTORE_COMMANDS_SAMPLEWORKCOMMAND_H_
#define BOOKSTORE_COMMANDS_SAMPLEWORKCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore sample work: works through the queue and prints what was done.
void runSampleWork(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEWORKCOMMAND_H_
