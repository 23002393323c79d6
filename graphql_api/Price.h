// Amounts of money as text. Internal: callers do not include it.

#ifndef GRAPHQL_API_PRICE_H_
#define GRAPHQL_API_PRICE_H_

#include <string>

namespace graphql {

// What GraphQLApi::normalizePrice() returns.
std::string withTwoDecimals(const std::string& amount);

}  // namespace graphql

#endif  // GRAPHQL_API_PRICE_H_
