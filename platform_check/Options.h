// The command line of graphql-platform-check.

#ifndef PLATFORM_CHECK_OPTIONS_H_
#define PLATFORM_CHECK_OPTIONS_H_

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform_check/Check.h"

namespace platform_check {

struct Options {
  Settings settings;
  std::set<std::string> only;  // groups and full names of checks; empty for all
  std::string junitFile;       // empty for none
  bool showsHelp = false;
  bool showsList = false;
};

// Says what is wrong with the command line, and what to do.
class Misuse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments without the program's name. Throws Misuse.
Options readOptions(const std::vector<std::string>& arguments);

// What --help prints.
std::string helpText();

}  // namespace platform_check

#endif  // PLATFORM_CHECK_OPTIONS_H_
