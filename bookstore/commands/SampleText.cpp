#include "bookstore/commands/SampleText.h"

#include "base/BookId.h"
#include "bookstore/Failure.h"

namespace bookstore {

std::string bookIdOf(const Arguments& arguments) {
  std::string bookId = arguments.text("BOOK");
  if (!base::isValidBookId(bookId)) {
    throw Failure(kUsage,
                  "nothing was sent or queued: the book's identifier is not one that a store gives",
                  "1 to 255 ASCII characters without blanks, quotes and backslashes, such as MTAz");
  }
  return bookId;
}

}  // namespace bookstore
