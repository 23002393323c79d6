#include "graphql_api/JsonText.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <locale>
#include <utility>

#include <json/json.h>

#include "graphql_api/StringUtils.h"

namespace graphql {

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Copies a JSON text, with its real numbers written without a decimal point: 9.99 as 999e-2.
class PointRemover {
 public:
  explicit PointRemover(const std::vector<char>& text)
      : next_(text.data()), end_(text.data() + text.size()) {}

  std::string run() {
    while (next_ != end_) {
      if (*next_ == '"') {
        copyString();
      } else if (*next_ == '/') {
        copyComment();
      } else if (isDigit(*next_) || *next_ == '-') {
        copyNumber();
      } else {
        copy();
      }
    }
    return std::move(copied_);
  }

 private:
  bool is(char character) const { return next_ != end_ && *next_ == character; }

  void copy() {
    if (next_ != end_) {
      copied_ += *next_++;
    }
  }

  // A character after a backslash never ends the string.
  void copyString() {
    copy();
    while (next_ != end_ && *next_ != '"') {
      if (*next_ == '\\') {
        copy();
      }
      copy();
    }
    copy();
  }

  // JsonCpp accepts comments, and keeps them for the log.
  void copyComment() {
    copy();
    const bool isLine = is('/');
    const bool isBlock = is('*');
    copy();
    if (isLine) {
      while (next_ != end_ && *next_ != '\n' && *next_ != '\r') {
        copy();
      }
    } else if (isBlock) {
      while (next_ != end_ && !(*next_ == '*' && next_ + 1 != end_ && next_[1] == '/')) {
        copy();
      }
      copy();
      copy();
    }
  }

  // Returns the number of digits.
  long long copyDigits() {
    const char* const begin = next_;
    while (next_ != end_ && isDigit(*next_)) {
      copy();
    }
    return next_ - begin;
  }

  void copyNumber() {
    copy();  // a digit or the sign
    copyDigits();
    const bool isReal = is('.');
    if (isReal) {
      ++next_;
    }
    const long long decimals = isReal ? copyDigits() : 0;
    const std::string exponent = takeExponent();
    if (!isReal || (!exponent.empty() && !isDigit(exponent.back()))) {
      copied_ += exponent;  // an invalid number must stay invalid
    } else {
      copied_ += joined({"e", decimal(numberOf(exponent) - decimals)});
    }
  }

  // The exponent with its letter; empty when the number has none.
  std::string takeExponent() {
    const char* const begin = next_;
    if (is('e') || is('E')) {
      ++next_;
      if (is('+') || is('-')) {
        ++next_;
      }
      while (next_ != end_ && isDigit(*next_)) {
        ++next_;
      }
    }
    return std::string(begin, next_);
  }

  // Limited to half of the lowest value, so that any number of decimals can be subtracted.
  static long long numberOf(const std::string& exponent) {
    const long long number = exponent.empty() ? 0 : std::strtoll(exponent.c_str() + 1, nullptr, 10);
    return std::max(number, std::numeric_limits<long long>::min() / 2);
  }

  const char* next_;
  const char* const end_;
  std::string copied_;
};

bool writesDecimalPoint(const std::locale& locale) {
  return std::use_facet<std::numpunct<char>>(locale).decimal_point() == '.';
}

}  // namespace

// FastWriter and Reader are deprecated upstream. They are used on purpose: stores expect the bytes
// that FastWriter writes, and Reader accepts everything that stores have always sent.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

std::string writeJson(const Json::Value& value) {
  return Json::FastWriter().write(value);
}

void parseJson(const std::vector<char>& body, Json::Value* value) {
  const bool collectComments = true;
  Json::Reader reader;
  // The reader parses real numbers by the global C++ locale, and rejects "9.99" if that has a
  // decimal comma. The locale belongs to the process, so the text is changed instead.
  if (writesDecimalPoint(std::locale())) {
    reader.parse(body.data(), body.data() + body.size(), *value, collectComments);
  } else {
    const std::string text = PointRemover(body).run();
    reader.parse(text.data(), text.data() + text.size(), *value, collectComments);
  }
}

#pragma GCC diagnostic pop

}  // namespace graphql
