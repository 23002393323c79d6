// JSON that a test reads.

#ifndef TESTS_SUPPORT_JSON_H_
#define TESTS_SUPPORT_JSON_H_

#include <sstream>
#include <string>
#include <vector>

#include <json/json.h>

namespace support {

// Throws Json::RuntimeError when `text` is not JSON.
inline Json::Value parseJson(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

// Values such as {"a":1}, each on a line.
inline std::vector<Json::Value> parseJsonLines(const std::string& text) {
  std::vector<Json::Value> values;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    values.push_back(parseJson(line));
  }
  return values;
}

}  // namespace support

#endif  // TESTS_SUPPORT_JSON_H_
