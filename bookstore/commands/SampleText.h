// Texts of samples that come from the command line. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_SAMPLETEXT_H_
#define BOOKSTORE_COMMANDS_SAMPLETEXT_H_

#include <string>

#include "bookstore/Command.h"

namespace bookstore {

// The book that was given as BOOK. Throws Failure unless a request can carry it unchanged.
std::string bookIdOf(const Arguments& arguments);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLETEXT_H_
