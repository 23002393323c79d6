// Parses the words of the command line into a command and its arguments. Holds no state; safe from
// any thread.

#ifndef BOOKSTORE_PARSER_H_
#define BOOKSTORE_PARSER_H_

#include <string>
#include <vector>

#include "bookstore/Command.h"

namespace bookstore {

struct Invocation {
  std::string text;                  // help or version, to print instead of running a command
  const Command* command = nullptr;  // null if there is a text
  Arguments arguments;
};

// Parses `words`, without the program's name, by the rows of `table`, which must outlive the
// result. Throws Failure with kUsage for words that match no row.
Invocation parse(const std::vector<std::string>& words, const std::vector<Command>& table);

}  // namespace bookstore

#endif  // BOOKSTORE_PARSER_H_
