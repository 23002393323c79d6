#include <orvane/utilities/Str.h>

namespace orvane {
namespace utilities {

const std::string Str::WHITESPACE = " \t\n\r\v\f";

std::string Str::trim(const std::string& text, const std::string& characters) {
  const std::size_t first = text.find_first_not_of(characters);
  if (first == std::string::npos) {
    return std::string();
  }
  return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

}  // namespace utilities
}  // namespace orvane
