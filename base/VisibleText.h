// Makes text safe to print: control characters and bytes that are not UTF-8 become escapes. Has no
// state; safe from any thread.

#ifndef BASE_VISIBLETEXT_H_
#define BASE_VISIBLETEXT_H_

#include <cstddef>
#include <string>

namespace base {

// The length in bytes of the UTF-8 character at `position` in `text`; 0 for a control character or
// an invalid byte.
std::size_t printableLength(const std::string& text, std::size_t position);

// Appends \n, \r, \t or \xHH for `byte`.
void appendEscape(char byte, std::string* text);

// `text` on one line, harmless to a terminal: bytes that do not print become escapes. All other
// text is unchanged, backslashes too.
std::string visibleText(const std::string& text);

}  // namespace base

#endif  // BASE_VISIBLETEXT_H_
