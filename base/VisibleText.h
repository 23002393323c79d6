// Text that shows every byte: control characters and bytes that are not UTF-8 become escapes. Holds
// no state; safe from any thread.

#ifndef BASE_VISIBLETEXT_H_
#define BASE_VISIBLETEXT_H_

#include <cstddef>
#include <string>

namespace base {

// The length of the UTF-8 character at `position` in `text`; 0 when there stands a control
// character or a byte that begins none.
std::size_t printableLength(const std::string& text, std::size_t position);

// Appends \n, \r, \t or \xHH for `byte`.
void appendEscape(char byte, std::string* text);

// `text` on one line that does nothing to a terminal: what does not print becomes an escape, all
// else stays, a backslash too.
std::string visibleText(const std::string& text);

}  // namespace base

#endif  // BASE_VISIBLETEXT_H_
