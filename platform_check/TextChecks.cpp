// The class Str.

#include <orvane/utilities/Str.h>

#include "platform_check/Check.h"

using orvane::utilities::Str;

namespace platform_check {

namespace {

void trimsWhiteSpace(const Settings&) {
  const std::string blanks = " \t\n\r\v\f";
  for (const std::string& text : {std::string("a b"), std::string("a\nb"), std::string("\xc2\xa0"),
                                  std::string("x\0y", 3), std::string()}) {
    requireEqual("the trimmed text", Str::trim(std::string(blanks).append(text).append(blanks)),
                 text);
    requireEqual("the text without white space around it", Str::trim(text), text);
  }
}

void trimsGivenCharacters(const Settings&) {
  requireEqual("the trimmed text", Str::trim("xyaxyx", "xy"), "a");
  requireEqual("the text trimmed of nothing", Str::trim(" a ", ""), " a ");
  requireEqual("the text of trimmed characters only", Str::trim("xxx", "x"), "");
}

}  // namespace

const std::vector<Check> kTextChecks = {
    {"text", "trims-white-space",
     "Remove blank, tab, line feed, carriage return, vertical tab and form feed at both ends, and "
     "nothing else.",
     &trimsWhiteSpace},
    {"text", "trims-given-characters",
     "Remove the bytes of the second argument at both ends, and no others.", &trimsGivenCharacters},
};

}  // namespace platform_check
