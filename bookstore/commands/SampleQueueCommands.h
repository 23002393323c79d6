// The commands that show the queue of samples, or remove an item from it.

#ifndef BOOKSTORE_COMMANDS_SAMPLEQUEUECOMMANDS_H_
#define BOOKSTORE_COMMANDS_SAMPLEQUEUECOMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore sample list: prints every item.
void runSampleList(Context& context);

// bookstore sample next: prints the oldest item.
void runSampleNext(Context& context);

// bookstore sample remove: removes the oldest item of a book.
void runSampleRemove(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEQUEUECOMMANDS_H_
