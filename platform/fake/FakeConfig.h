// An open configuration of the fake platform.

#ifndef PLATFORM_FAKE_FAKECONFIG_H_
#define PLATFORM_FAKE_FAKECONFIG_H_

#include <map>
#include <set>
#include <string>

struct ov_config {
  std::string path;
  std::map<std::string, std::string> values;
  std::set<std::string> secretKeys;
  std::string returned;
};

#endif  // PLATFORM_FAKE_FAKECONFIG_H_
