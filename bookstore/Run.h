// The program as a function. A process runs it on one thread at a time: --verbose, --show-secrets
// and --dry-run hold for the process while it runs, the first two as settings in the environment
// also afterwards.

#ifndef BOOKSTORE_RUN_H_
#define BOOKSTORE_RUN_H_

#include <string>
#include <vector>

#include "bookstore/Commands.h"
#include "bookstore/terminal/Terminal.h"

namespace bookstore {

// Runs the command that `words` (without the program's name) ask for, and returns the exit code.
// Throws nothing but for want of memory while it reports a failure.
int run(const std::vector<std::string>& words, const Terminal& terminal,
        const std::vector<Command>& table = commands());

}  // namespace bookstore

#endif  // BOOKSTORE_RUN_H_
