// The commands that request one book from a store.

#ifndef BOOKSTORE_COMMANDS_SAMPLEDETAILSCOMMANDS_H_
#define BOOKSTORE_COMMANDS_SAMPLEDETAILSCOMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore sample info: prints title, author, price and picture.
void runSampleInfo(Context& context);

// bookstore sample price: prints the price.
void runSamplePrice(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEDETAILSCOMMANDS_H_
