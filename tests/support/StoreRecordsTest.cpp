#include "tests/support/StoreRecords.h"

#include <gtest/gtest.h>

TEST(StoreRecordsTest, AStoreIsWholeAndDiffersFromAnotherByItsName) {
  EXPECT_TRUE(makeStore("a").isValid());
  EXPECT_NE(makeStore("a").apiUrl, makeStore("b").apiUrl);
  EXPECT_NE(makeStore("a").providerID, makeStore("b").providerID);
}
