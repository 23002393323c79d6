// Escapes control characters and bytes that are not UTF-8. Holds no state; safe from any thread.

#ifndef BASE_VISIBLETEXT_H_
#define BASE_VISIBLETEXT_H_

#include <cstddef>
#include <string>

namespace base {

// The length in bytes of the UTF-8 character at `position` in `text`; 0 for a control character and
// for a byte that is not UTF-8.
std::size_t printableLength(const std::string& text, std::size_t position);

// Appends \n, \r, \t or \xHH for `byte`.
void appendEscape(char byte, std::string* text);

// `text` as one line that is safe to print on a terminal: characters that do not print become
// escapes. Everything else is unchanged, a backslash too.
std::string visibleText(const std::string& text);

}  // namespace base

#endif  // BASE_VISIBLETEXT_H_
