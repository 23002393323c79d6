#include "base/BookId.h"

#include <algorithm>

namespace base {

namespace {

constexpr std::size_t kLongest = 255;

}  // namespace

bool isValidBookId(const std::string& bookId) {
  return !bookId.empty() && bookId.size() <= kLongest &&
         std::all_of(bookId.begin(), bookId.end(), [](char character) {
           return character > ' ' && character < '\x7f' && character != '"' && character != '\\';
         });
}

}  // namespace base
