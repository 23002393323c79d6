// Reads JSON in locales with another number format. The unit is internal to the library, so the
// test compiles it.

#include "graphql_api/JsonText.h"

#include <locale>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <json/json.h>

namespace {

class Comma : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
};

class CommaAndGroups : public Comma {
 protected:
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// A global C++ locale for a scope.
class GlobalLocale {
 public:
  explicit GlobalLocale(std::numpunct<char>* numbers)
      : previous_(std::locale::global(std::locale(std::locale::classic(), numbers))) {}
  ~GlobalLocale() { std::locale::global(previous_); }

  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  const std::locale previous_;
};

Json::Value parsed(const std::string& text) {
  Json::Value value;
  graphql::parseJson({text.begin(), text.end()}, &value);
  return value;
}

// Valid and invalid JSON numbers, alone and before other text.
std::vector<std::string> texts() {
  std::vector<std::string> all = {
      R"({"a":"9.99","b":9.99,"c\"1.5":"\\","d":"\"1.5\" 2.5","e":2.5})",
      "/* 1.5 \" */ [1.5] // 2.5 \"\n",
      "// 1.5 \"\r[2.5]",
      "// 1.5 \"\r\n[2.5]",
      "[1.5, // 2.5\n 3.5 /* 4.5 */ , /**/ 5.5]",
      "[1.5 /* 2.5",
      "[1.5 /*/ 2.5 */ ]",
      "[1.5 / 2.5, \"3.5\"]",
      "[1.5 /\" 2.5, 3.5]",
      "[\"1.5",
      "[\"1.5\\",
      "[1.5, 2.5",
      std::string("[1.5,\0 2.5]", 11),
      "tr1.5ue",
      "",
  };
  for (const char* number :
       {"0",
        "7",
        "-7",
        "0.0",
        "-0.0",
        "0.5",
        "9.99",
        "-9.99",
        "00.5",
        "1.",
        "-1.",
        "-.5",
        "-.",
        "-",
        ".",
        ".5",
        "1.5e3",
        "1.5E3",
        "1.5e+3",
        "1.5e-3",
        "1e3",
        "1e-3",
        "1.e3",
        "1.5e",
        "1.5e+",
        "1.5e-",
        "1e",
        "1.5e3.5",
        "1e5.5",
        "1e-5.5",
        "1.2.3",
        "1-2.5",
        "12345678.25",
        "1234567890123456789.5",
        "12345678901234567890123",
        "4.9406564584124654e-324",
        "2.2250738585072011e-308",
        "1.7976931348623157e308",
        "1.7976931348623159e308",
        "1.5e400",
        "-1.5e400",
        "1.5e-400",
        "0.1e99999999999999999999",
        "0.0e99999999999999999999",
        "1.5e-99999999999999999999",
        "0.30000000000000004",
        "9.9900000000000002",
        "179769313486231580793728971405303415079934132710037826936173778980.5"}) {
    for (const char* frame : {"%", "[%]", "[%,8.25]", "{\"n\":%}", "[\"%\"]", "[ % ]"}) {
      std::string text = frame;
      all.push_back(text.replace(text.find('%'), 1, number));
    }
  }
  all.push_back("[0." + std::string(400, '0') + "15e400]");
  all.push_back("[1" + std::string(400, '0') + ".5e-400]");
  return all;
}

}  // namespace

TEST(JsonTextTest, EveryTextIsReadAlikeUnderEachLocale) {
  for (const std::string& text : texts()) {
    const std::string expected = parsed(text).toStyledString();
    {
      const GlobalLocale comma(new Comma);
      EXPECT_EQ(parsed(text).toStyledString(), expected) << text;
    }
    {
      const GlobalLocale groups(new CommaAndGroups);
      EXPECT_EQ(parsed(text).toStyledString(), expected) << text;
    }
  }
}

TEST(JsonTextTest, ARealNumberIsTheSameDoubleUnderEachLocale) {
  const char* const number =
      "[0.1,9.99,1.5e3,-7.25e-3,123456789.123456789,5e-324,1.0000000000000002]";
  const Json::Value expected = parsed(number);
  ASSERT_EQ(expected[1].asDouble(), 9.99);
  const GlobalLocale groups(new CommaAndGroups);
  const Json::Value read = parsed(number);
  ASSERT_EQ(read.size(), expected.size());
  for (Json::ArrayIndex index = 0; index < read.size(); ++index) {
    EXPECT_EQ(read[index].asDouble(), expected[index].asDouble()) << index;
  }
}

TEST(JsonTextTest, FourThreadsReadAlikeUnderACommaLocale) {
  const GlobalLocale groups(new CommaAndGroups);
  const std::string name = std::locale().name();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int round = 0; round < 1000; ++round) {
        EXPECT_EQ(parsed(R"({"value":7.99})")["value"].asDouble(), 7.99);
        EXPECT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).decimal_point(), ',');
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(std::locale().name(), name);
}

TEST(JsonTextTest, ALocaleThatIsSetMeanwhileStays) {
  const GlobalLocale groups(new CommaAndGroups);
  std::thread reader([] {
    for (int round = 0; round < 1000; ++round) {
      parsed("[7.99]");
    }
  });
  for (int round = 0; round < 1000; ++round) {
    const GlobalLocale comma(new Comma);
    EXPECT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).grouping(), "");
  }
  reader.join();
}
