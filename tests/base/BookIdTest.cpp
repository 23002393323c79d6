#include "base/BookId.h"

#include <string>

#include <gtest/gtest.h>

using base::isValidBookId;

TEST(BookIdTest, PrintableAsciiIsValid) {
  EXPECT_TRUE(isValidBookId("MTAz"));
  EXPECT_TRUE(isValidBookId("!#[]^~/+="));
  EXPECT_TRUE(isValidBookId(std::string(255, 'a')));
}

TEST(BookIdTest, AnEmptyOrLongTextIsNot) {
  EXPECT_FALSE(isValidBookId(""));
  EXPECT_FALSE(isValidBookId(std::string(256, 'a')));
}

TEST(BookIdTest, ATextThatCouldChangeTheQueryIsNot) {
  for (const char* text : {"a b", "a\"b", "a\\b", "a\nb", "\x7f", "Bücher"}) {
    EXPECT_FALSE(isValidBookId(text)) << text;
  }
  EXPECT_FALSE(isValidBookId(std::string("a\0b", 3)));
}
