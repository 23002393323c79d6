// The program as a function. A process runs it on one thread at a time: --verbose, --show-secrets
// and --dry-run apply to the whole process. The first two are settings in the environment, and stay
// set afterwards.

#ifndef BOOKSTORE_RUN_H_
#define BOOKSTORE_RUN_H_

#include <string>
#include <vector>

#include "bookstore/Commands.h"
#include "bookstore/terminal/Terminal.h"

namespace bookstore {

// Runs the command in `words` (without the program's name), and returns the exit code.
// Throws only std::bad_alloc, while it reports a failure.
int run(const std::vector<std::string>& words, const Terminal& terminal,
        const std::vector<Command>& table = commands());

}  // namespace bookstore

#endif  // BOOKSTORE_RUN_H_
