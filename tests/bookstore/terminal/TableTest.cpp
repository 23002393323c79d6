#include "bookstore/terminal/Table.h"

#include <gtest/gtest.h>

using bookstore::displayWidth;
using bookstore::Table;

TEST(TableTest, AlignsColumnsAndEndsLinesWithoutBlanks) {
  Table table({"A", "LONG TITLE", "C"});
  table.addRow({"long cell", "b", "c"});
  table.addRow({"a", "b", ""});
  EXPECT_EQ(table.text(false),
            "A          LONG TITLE  C\n"
            "long cell  b           c\n"
            "a          b\n");
}

TEST(TableTest, AlignsByWhatTheTerminalShows) {
  Table table;
  table.addRow({"書店", "1"});
  table.addRow({"Cafe\u0301", "2"});
  table.addRow({"Bücher", "3"});
  EXPECT_EQ(table.text(false),
            "書店    1\n"
            "Cafe\u0301    2\n"
            "Bücher  3\n");
}

TEST(TableTest, SetsOnlyTitlesInBold) {
  Table table({"A"});
  table.addRow({"a"});
  EXPECT_EQ(table.text(true), "\033[1mA\033[0m\na\n");
  Table untitled;
  untitled.addRow({"a"});
  EXPECT_EQ(untitled.text(true), "a\n");
}

TEST(TableTest, MakesControlCharactersVisible) {
  Table table;
  table.addRow({"a\033[0m", "b"});
  table.addRow({"c", "d"});
  EXPECT_EQ(table.text(false),
            "a\\x1b[0m  b\n"
            "c         d\n");
}

TEST(TableTest, HoldsNothingWithoutRows) {
  EXPECT_EQ(Table().text(false), "");
}

TEST(TableTest, CountsColumnsOfTheTerminal) {
  EXPECT_EQ(displayWidth(""), 0u);
  EXPECT_EQ(displayWidth("abc"), 3u);
  EXPECT_EQ(displayWidth("é"), 1u);
  EXPECT_EQ(displayWidth("e\u0301"), 1u);
  EXPECT_EQ(displayWidth("書"), 2u);
  EXPECT_EQ(displayWidth("📖"), 2u);
}

TEST(TableTest, CountsEachByteThatIsNoCharacter) {
  EXPECT_EQ(displayWidth("a\xff\xfe"), 3u);
  EXPECT_EQ(displayWidth("\xe6\x9b"), 2u);
  EXPECT_EQ(displayWidth(std::string("a\0b", 3)), 3u);
}
