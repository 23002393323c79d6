#include "platform/host/ConfigText.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ConfigEntries;
using host::ConfigValue;
using host::formatConfig;
using host::parseConfig;
using host::ParsedConfig;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string textOf(const ParsedConfig& config, const std::string& key) {
  const auto found = config.entries.find(key);
  return found == config.entries.end() ? "(missing)" : found->second.text;
}

void expectSame(const std::string& key, const std::string& text) {
  ConfigEntries entries;
  entries[key] = {text, false};
  entries["other"] = {"x", false};
  const std::string written = formatConfig(entries);
  const ParsedConfig read = parseConfig(written);
  EXPECT_THAT(read.damagedLines, IsEmpty()) << written;
  EXPECT_EQ(read.entries.size(), 2u) << written;
  EXPECT_EQ(textOf(read, key), text) << written;
  EXPECT_EQ(textOf(read, "other"), "x") << written;
  EXPECT_FALSE(read.entries.at(key).isSecret) << written;
}

const char* const kDifficultTexts[] = {
    "",
    " ",
    "  ",
    " a ",
    "\ta\t",
    "a=b",
    "=",
    "#",
    "# a",
    "a#b",
    "\n",
    "a\nb=c\n",
    "\r",
    "a\r\n",
    "\\",
    "a\\",
    "\\n",
    "\\x41",
    "\\\\",
    "\x01\x7f",
    "\xff\xfe",
    "\xc3",
    "\xc3\xa4",
    "\xe2\x82",
    "\xc2\x9b",
    "secret:",
    "secret:v1:AAAA",
    " secret:x",
    "secret: ",
    "\\secret:",
    "secret",
    "\xef\xbb\xbf",
    "a\x1b[31m",
    "\v\f",
};

}  // namespace

TEST(ConfigTextTest, GivesEveryTextBackByteForByte) {
  for (const std::string text : kDifficultTexts) {
    expectSame("key", text);
  }
}

TEST(ConfigTextTest, GivesEveryKeyBackByteForByte) {
  for (const std::string text : kDifficultTexts) {
    expectSame(text, "value");
  }
}

TEST(ConfigTextTest, GivesEveryPairOfBytesBack) {
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second) {
      const std::string text = {static_cast<char>(first), static_cast<char>(second)};
      const ParsedConfig read = parseConfig(formatConfig({{text, {text, false}}}));
      ASSERT_EQ(textOf(read, text), text) << first << ' ' << second;
    }
  }
}

TEST(ConfigTextTest, IsReadableText) {
  ConfigEntries entries;
  entries["url0"] = {"https://a.example/?q=1#x", false};
  entries["name"] = {
      "B\xc3\xbc"
      "cher & more",
      false};
  entries["token0"] = {"v1:abc", true};
  EXPECT_EQ(formatConfig(entries),
            "# Settings of the device, one key=value per line.\n"
            "name=B\xc3\xbc"
            "cher & more\n"
            "token0=secret:v1:abc\n"
            "url0=https://a.example/?q=1#x\n");
}

TEST(ConfigTextTest, TellsSecretsFromTextsThatLookLikeOne) {
  ConfigEntries entries;
  entries["secret"] = {"v1:abc", true};
  entries["text"] = {"secret:v1:abc", false};
  const ParsedConfig read = parseConfig(formatConfig(entries));
  EXPECT_TRUE(read.entries.at("secret").isSecret);
  EXPECT_EQ(textOf(read, "secret"), "v1:abc");
  EXPECT_FALSE(read.entries.at("text").isSecret);
  EXPECT_EQ(textOf(read, "text"), "secret:v1:abc");
}

TEST(ConfigTextTest, LeavesOutCommentsEmptyLinesAndBlanks) {
  const ParsedConfig read = parseConfig("# a=b\n\n  # c=d\n \t\n  key \t=  a value \t\r\nlast = x");
  EXPECT_THAT(read.damagedLines, IsEmpty());
  EXPECT_EQ(read.entries.size(), 2u);
  EXPECT_EQ(textOf(read, "key"), "a value");
  EXPECT_EQ(textOf(read, "last"), "x");
}

TEST(ConfigTextTest, TakesTheLastOfSeveralLinesWithOneKey) {
  EXPECT_EQ(textOf(parseConfig("b=1\na=2\nb=3\n"), "b"), "3");
}

TEST(ConfigTextTest, ReadsEscapesInEitherLetterCase) {
  EXPECT_EQ(textOf(parseConfig("a=\\x4a\\x4A\\t"), "a"), "JJ\t");
}

TEST(ConfigTextTest, NamesDamagedLinesAndReadsTheRest) {
  const std::string text =
      std::string("a=1\nno separator\nb=\\q\nc=\\x4\nd=\\x4g\ne=\\\nf=\\x00\n") + "g=x" + '\0' +
      "y\n\\z=1\nh=2";
  const ParsedConfig read = parseConfig(text);
  EXPECT_THAT(read.damagedLines, ElementsAre(2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u));
  EXPECT_EQ(read.entries.size(), 2u);
  EXPECT_EQ(textOf(read, "a"), "1");
  EXPECT_EQ(textOf(read, "h"), "2");
}

TEST(ConfigTextTest, AnEmptyFileHoldsNothing) {
  EXPECT_THAT(parseConfig("").entries, IsEmpty());
  EXPECT_THAT(parseConfig("").damagedLines, IsEmpty());
}
