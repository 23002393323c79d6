// Helpers for texts. Hold no state; safe to call from any thread.

#ifndef PLATFORM_ORVANE_UTILITIES_STR_H_
#define PLATFORM_ORVANE_UTILITIES_STR_H_

#include <string>

namespace orvane {
namespace utilities {

class Str {
 public:
  // The characters that count as white space: blank, tab, line feed, carriage return, vertical tab,
  // form feed.
  static const std::string WHITESPACE;

  // `text` without the leading and trailing bytes that stand in `characters`.
  static std::string trim(const std::string& text, const std::string& characters = WHITESPACE);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_STR_H_
