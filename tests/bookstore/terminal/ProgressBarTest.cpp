#include "bookstore/terminal/ProgressBar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bookstore/terminal/Table.h"

using bookstore::progressBar;
using ::testing::EndsWith;

TEST(ProgressBarTest, FillsAsFarAsPiecesAreDone) {
  EXPECT_EQ(progressBar(0, 2, "One"), "[--------------------] 1 of 2  One");
  EXPECT_EQ(progressBar(1, 2, "Two"), "[##########----------] 2 of 2  Two");
}

TEST(ProgressBarTest, CountsThePieceAtWorkAlsoWhereItIsGoneMeanwhile) {
  EXPECT_EQ(progressBar(1, 1, "Two"), "[##########----------] 2 of 2  Two");
}

TEST(ProgressBarTest, MakesATitleHarmless) {
  EXPECT_THAT(progressBar(0, 1, "\033[2J\n"), EndsWith("1 of 1  \\x1b[2J\\n"));
}

TEST(ProgressBarTest, CutsALongTitleBetweenTwoCharacters) {
  const std::string forty(40, 'a');
  EXPECT_THAT(progressBar(0, 1, forty), EndsWith("  " + forty));
  EXPECT_THAT(progressBar(0, 1, forty + "b"), EndsWith("  " + std::string(39, 'a') + "…"));
  std::string wide;
  for (int i = 0; i < 30; ++i) {
    wide += "本";  // two columns
  }
  const std::string bar = progressBar(0, 1, wide);
  EXPECT_THAT(bar, EndsWith("本…"));
  EXPECT_EQ(bookstore::displayWidth(bar.substr(bar.find("  ") + 2)), 39U);
}
