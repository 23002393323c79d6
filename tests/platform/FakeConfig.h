// An open configuration of the fake platform.

#ifndef TESTS_PLATFORM_FAKECONFIG_H_
#define TESTS_PLATFORM_FAKECONFIG_H_

#include <map>
#include <set>
#include <string>

struct ov_config {
  std::string path;
  std::map<std::string, std::string> values;
  std::set<std::string> secretKeys;
  std::string returned;
};

#endif  // TESTS_PLATFORM_FAKECONFIG_H_
