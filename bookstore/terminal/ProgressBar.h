// How far a longer work has come, on one line. Holds no state; safe from any thread.

#ifndef BOOKSTORE_TERMINAL_PROGRESSBAR_H_
#define BOOKSTORE_TERMINAL_PROGRESSBAR_H_

#include <cstddef>
#include <string>

namespace bookstore {

// A bar filled as far as `done` of `all` pieces are done, the number of the piece that is at work,
// and `title`, which says what that is: cut at 40 columns, its control characters made visible.
std::string progressBar(std::size_t done, std::size_t all, const std::string& title);

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_PROGRESSBAR_H_
