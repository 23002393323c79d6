// Which identifiers of books a request can carry. Holds no state; safe from any thread.

#ifndef BASE_BOOKID_H_
#define BASE_BOOKID_H_

#include <string>

namespace base {

// True for 1 to 255 printable ASCII characters without spaces, quotation marks and backslashes. The
// library puts the identifier into the query unchanged, so that any other text could change what is
// requested in the customer's name.
bool isValidBookId(const std::string& bookId);

}  // namespace base

#endif  // BASE_BOOKID_H_
