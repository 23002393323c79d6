// The scripts that complete the program's commands and options in a shell, made from its table.
// Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMPLETION_H_
#define BOOKSTORE_COMPLETION_H_

#include <string>
#include <vector>

#include "bookstore/Command.h"

namespace bookstore {

// Each script completes the commands, the options of every command, the choices of an option or
// argument, and files for a value named FILE.
std::string bashCompletion(const std::vector<Command>& table);
std::string zshCompletion(const std::vector<Command>& table);
std::string fishCompletion(const std::vector<Command>& table);

// bookstore completion: prints the script of one shell.
void runCompletion(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMPLETION_H_
