#include "bookstore/commands/Validation.h"

#include "base/BookId.h"
#include "base/VisibleText.h"
#include "bookstore/Failure.h"

namespace bookstore {

namespace {

// The length of the character at `position`; 0 where none is that a request can carry.
std::size_t characterLength(const std::string& text, std::size_t position) {
  const std::size_t length = base::printableLength(text, position);
  if (length != 0 || text[position] == '\0') {
    return length;
  }
  // A control character: one byte, or the set that UTF-8 writes in two.
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
      what += text[at] == '\0' ? " holds a NUL" : " is not valid UTF-8";
      what += " at byte " + std::to_string(at + 1);
      throw Failure(kUsage, what,
                    "text in UTF-8 without NUL: a request cannot carry another one unchanged");
    }
    at += length;
  }
}

std::string utf8Option(const Arguments& arguments, const std::string& option) {
  std::string text = arguments.text(option);
  requireUtf8("text after " + option, text);
  return text;
}

std::string validBookId(const Arguments& arguments) {
  std::string bookId = arguments.text("BOOK");
  if (!base::isValidBookId(bookId)) {
    throw Failure(kUsage,
                  "nothing was sent or queued: the book's identifier is not one that a store gives",
                  "1 to 255 ASCII characters without blanks, quotes and backslashes, such as MTAz");
  }
  return bookId;
}

}  // namespace bookstore
