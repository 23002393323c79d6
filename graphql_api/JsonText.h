// JSON values from and to text. Internal: callers do not include it.

#ifndef GRAPHQL_API_JSONTEXT_H_
#define GRAPHQL_API_JSONTEXT_H_

#include <string>
#include <vector>

#include <json/forwards.h>

namespace graphql {

// The text of `value` on one line, which ends with a line feed.
std::string writeJson(const Json::Value& value);

// Parses `body` into `*value`. After an error the value is null or incomplete, and the expected
// data is missing. Reads numbers the same way in every locale, and changes no locale.
void parseJson(const std::vector<char>& body, Json::Value* value);

}  // namespace graphql

#endif  // GRAPHQL_API_JSONTEXT_H_
