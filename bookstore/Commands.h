// The table of the program's commands and options. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_H_
#define BOOKSTORE_COMMANDS_H_

#include <vector>

#include "bookstore/Command.h"

namespace bookstore {

// The commands, in the order of --help.
const std::vector<Command>& commands();

// The options of every command.
const std::vector<Option>& commonOptions();

// The options that print a text and end the program.
const Option& helpOption();
const Option& versionOption();

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_H_
