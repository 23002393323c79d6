// A locale that writes numbers in another way than JSON: digits grouped by points, a comma before
// the fraction. The build makes it.

#ifndef TESTS_GRAPHQL_API_GERMANLOCALE_H_
#define TESTS_GRAPHQL_API_GERMANLOCALE_H_

#include <clocale>
#include <cstdlib>
#include <locale>

#include <gtest/gtest.h>

// Gives the process this locale in C, and where `inCpp` is true in C++, too.
inline void becomeGerman(bool inCpp) {
  const char name[] = "de_DE.UTF-8";
  ::setenv("LOCPATH", TEST_LOCALES, 1);
  ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << "the build makes this locale";
  if (inCpp) {
    std::locale::global(std::locale(name));
    ASSERT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).decimal_point(), ',');
  }
}

#endif  // TESTS_GRAPHQL_API_GERMANLOCALE_H_
