#include "graphql_api/StringUtils.h"

#include <cstdio>

namespace graphql {

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view piece : parts) {
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
