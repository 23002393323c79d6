#include "tests/support/Json.h"

#include <gtest/gtest.h>

TEST(JsonTest, ReadsAValue) {
  EXPECT_EQ(support::parseJson(R"({"a":[1,2]})")["a"][1].asInt(), 2);
}

TEST(JsonTest, ThrowsWhereThereIsNone) {
  EXPECT_THROW(support::parseJson("{"), Json::RuntimeError);
  EXPECT_THROW(support::parseJson(""), Json::RuntimeError);
}

TEST(JsonTest, ReadsAValueFromEachLine) {
  const auto values = support::parseJsonLines("{\"a\":1}\n{\"a\":2}\n");
  ASSERT_EQ(values.size(), 2U);
  EXPECT_EQ(values[1]["a"].asInt(), 2);
  EXPECT_TRUE(support::parseJsonLines("").empty());
}
