// The progress of a longer task, on one line. Holds no state; safe from any thread.

#ifndef BOOKSTORE_TERMINAL_PROGRESSBAR_H_
#define BOOKSTORE_TERMINAL_PROGRESSBAR_H_

#include <cstddef>
#include <string>

namespace bookstore {

// A bar for `done` of `all` pieces, the number of the current piece, and its `title`, cut at 40
// columns and with control characters escaped.
std::string progressBar(std::size_t done, std::size_t all, const std::string& title);

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_PROGRESSBAR_H_
