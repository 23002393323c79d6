// Helpers for texts. An integrator implements the class in liborvane_utilities.so. It has no state
// that changes; its members may be used from any thread. The library trims the value of a response
// header.

#ifndef PLATFORM_ORVANE_UTILITIES_STR_H_
#define PLATFORM_ORVANE_UTILITIES_STR_H_

#include <string>

namespace orvane {
namespace utilities {

class Str {
 public:
  // The characters that count as white space: blank, tab, line feed, carriage return, vertical tab
  // and form feed. Not available before the initialisation of static objects in
  // liborvane_utilities.so: do not use it in constructors of other static objects.
  static const std::string WHITESPACE;

  // Returns a copy of `text` without the leading and trailing bytes that are in `characters`. The
  // bytes between are unchanged. Returns an empty text when nothing is left; an empty `characters`
  // removes nothing. Throws nothing but std::bad_alloc. No locale plays a role.
  static std::string trim(const std::string& text, const std::string& characters = WHITESPACE);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_STR_H_
