// Strings made of parts. Internal: callers do not include it. The functions are not inline, so that
// the library contains their code once.

#ifndef GRAPHQL_API_STRINGUTILS_H_
#define GRAPHQL_API_STRINGUTILS_H_

#include <initializer_list>
#include <string>
#include <string_view>

namespace graphql {

// Concatenates the parts, which may contain any bytes.
std::string joined(std::initializer_list<std::string_view> parts);

// What std::to_string() gives, without the table of digits that it brings into the library.
std::string decimal(long long number);

}  // namespace graphql

#endif  // GRAPHQL_API_STRINGUTILS_H_
