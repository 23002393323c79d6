#include "graphql_api/Price.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace graphql {

namespace {

// strtod() as in the "C" locale, whatever the locale of the process.
double leadingNumber(const std::string& text) {
  static const locale_t classic = ::newlocale(LC_ALL_MASK, "C", nullptr);
  return ::strtod_l(text.c_str(), nullptr, classic);
}

int clampedToInt(double value) {
  using Limits = std::numeric_limits<int>;
  if (std::isnan(value)) {
    return 0;
  }
  const double upTo = std::min<double>(value, Limits::max());
  return static_cast<int>(std::max<double>(upTo, Limits::min()));
}

}  // namespace

std::string withTwoDecimals(const std::string& amount) {
  if (amount.empty()) {
    return "0.00";
  }
  std::string text = amount;
  const std::size_t comma = text.find(',');
  if (comma != std::string::npos) {
    text[comma] = '.';
  } else if (text.find('.') == std::string::npos) {
    return text + ".00";
  }
  const int cents = clampedToInt(std::round(leadingNumber(text) * 100.0));
  char price[24];
  std::snprintf(price, sizeof price, "%d.%02d", cents / 100, cents % 100);
  return price;
}

}  // namespace graphql
