#include "bookstore/commands/Validation.h"

#include "base/BookId.h"
#include "base/VisibleText.h"
#include "bookstore/Failure.h"

namespace bookstore {

namespace {

// The length of the character at `position`; 0 when a request cannot carry that.
std::size_t characterLength(const std::string& text, std::size_t position) {
  const std::size_t length = base::printableLength(text, position);
  if (length != 0 || text[position] == '\0') {
    return length;
  }
  // A control character: one byte, or one of those that UTF-8 encodes in two.
  const auto first = static_cast<unsigned char>(text[position]);
  if (first < 0x80) {
    return 1;
  }
  const bool hasNext = position + 1 < text.size();
  const unsigned char next = hasNext ? static_cast<unsigned char>(text[position + 1]) : 0;
  return first == 0xc2 && next >= 0x80 && next < 0xa0 ? 2 : 0;
}

}  // namespace

void requireUtf8(const std::string& name, const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = characterLength(text, at);
    if (length == 0) {
      std::string what = "the " + name;
      what += text[at] == '\0' ? " contains a NUL" : " is not valid UTF-8";
      what += " at byte " + std::to_string(at + 1);
      throw Failure(kUsage, what,
                    "Use UTF-8 text without NUL: a request can carry no other text unchanged");
    }
    at += length;
  }
}

std::string utf8Option(const Arguments& arguments, const std::string& option) {
  std::string text = arguments.text(option);
  requireUtf8("value of " + option, text);
  return text;
}

std::string validBookId(const Arguments& arguments) {
  std::string bookId = arguments.text("BOOK");
  if (!base::isValidBookId(bookId)) {
    throw Failure(kUsage, "\"" + bookId + "\" cannot be the uid of a book",
                  "Use 1 to 255 ASCII characters without spaces, quotation marks and backslashes");
  }
  return bookId;
}

}  // namespace bookstore
