#include <orvane/utilities/Str.h>

#include <gtest/gtest.h>

using orvane::utilities::Str;

TEST(StrTest, TrimsEveryKindOfWhiteSpaceAtBothEndsOnly) {
  EXPECT_EQ(Str::trim(" \t\r\n\v\fa b\n"), "a b");
}

TEST(StrTest, TrimsNothingFromATextWithoutWhiteSpace) {
  EXPECT_EQ(Str::trim("ab"), "ab");
}

TEST(StrTest, TrimsATextOfWhiteSpaceToNothing) {
  EXPECT_EQ(Str::trim(" \r\n"), "");
}

TEST(StrTest, TrimsTheGivenCharacters) {
  EXPECT_EQ(Str::trim("xxaxx", "x"), "a");
}
