// Texts made of pieces. Internal: no caller includes it. Each function stands once in the library
// instead of at every place that makes a text.

#ifndef GRAPHQL_API_TEXT_H_
#define GRAPHQL_API_TEXT_H_

#include <initializer_list>
#include <string>
#include <string_view>

namespace graphql {

// The pieces one after the other; they may hold any bytes.
std::string joined(std::initializer_list<std::string_view> pieces);

// What std::to_string() gives, without the table of digits that it brings into the library.
std::string decimal(long long number);

}  // namespace graphql

#endif  // GRAPHQL_API_TEXT_H_
