// JSON values from and to text. Internal: no caller includes it.

#ifndef GRAPHQL_API_JSONTEXT_H_
#define GRAPHQL_API_JSONTEXT_H_

#include <string>
#include <vector>

#include <json/forwards.h>

namespace graphql {

// The text of `value` on one line, which ends with a line feed.
std::string writeJson(const Json::Value& value);

// Reads `body` into `*value`. A body that cannot be parsed leaves the value null or partly filled:
// either has no data. Reads numbers alike under every locale, and changes none.
void parseJson(const std::vector<char>& body, Json::Value* value);

}  // namespace graphql

#endif  // GRAPHQL_API_JSONTEXT_H_
