#include "graphql_api/Text.h"

#include <cstdio>

namespace graphql {

std::string joined(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) {
    text.append(piece.data(), piece.size());
  }
  return text;
}

std::string decimal(long long number) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%lld", number);
  return digits;
}

}  // namespace graphql
