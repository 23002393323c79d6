// The command that adds to the queue of samples.

#ifndef BOOKSTORE_COMMANDS_SAMPLEADDCOMMAND_H_
#define BOOKSTORE_COMMANDS_SAMPLEADDCOMMAND_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore sample add: queues a sample and starts the background application.
void runSampleAdd(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEADDCOMMAND_H_
