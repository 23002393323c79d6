#include <orvane/utilities/SerializationUtils.h>

#include <algorithm>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "platform/host/LengthPrefix.h"

using orvane::utilities::SerializationUtils;

namespace {

std::string serialized(const std::string& text) {
  std::ostringstream out;
  EXPECT_EQ(SerializationUtils::SerializeString(text, out), 0);
  return out.str();
}

// Records the largest read request, and has only a few bytes.
class ShortSource : public std::streambuf {
 public:
  std::streamsize largestRequest = 0;

 protected:
  std::streamsize xsgetn(char* bytes, std::streamsize count) override {
    largestRequest = std::max(largestRequest, count);
    return std::streambuf::xsgetn(bytes, count);
  }
  int_type underflow() override {
    if (given_ == sizeof prefix_) {
      return traits_type::eof();
    }
    setg(prefix_, prefix_, prefix_ + sizeof prefix_);
    given_ = sizeof prefix_;
    return traits_type::to_int_type(prefix_[0]);
  }

 private:
  char prefix_[4] = {'\xff', '\xff', '\xff', '\xff'};
  std::size_t given_ = 0;
};

}  // namespace

TEST(SerializationUtilsTest, WritesTheLengthLowestByteFirstAndTheBytes) {
  EXPECT_EQ(serialized("ab"), std::string("\x02\0\0\0ab", 6));
  EXPECT_EQ(serialized(""), std::string(4, '\0'));
  EXPECT_EQ(serialized(std::string(0x10203, 'x')).substr(0, 4), std::string("\x03\x02\x01\0", 4));
}

TEST(SerializationUtilsTest, FailsAtTheEndOfATruncatedString) {
  const std::string whole = serialized(std::string(70000, 'x'));
  for (const std::size_t length : {0u, 1u, 3u, 4u, 5u, 65539u, 65540u, 65541u, 70003u}) {
    std::istringstream in(whole.substr(0, length));
    std::string text = "before";
    EXPECT_NE(SerializationUtils::DeserializeString(in, &text), 0) << length;
    EXPECT_EQ(text, "before") << length;
    EXPECT_TRUE(in.eof()) << length;
    EXPECT_EQ(in.get(), std::istream::traits_type::eof()) << length;
  }
}

TEST(SerializationUtilsTest, DoesNotBelieveALengthThatTheStreamCannotBack) {
  ShortSource source;
  std::istream in(&source);
  std::string text;
  EXPECT_NE(SerializationUtils::DeserializeString(in, &text), 0);
  EXPECT_LE(source.largestRequest, 64 * 1024);
}

// On 32-bit systems such lengths do not fit into a signed number of bytes.
TEST(SerializationUtilsTest, FailsAtTheLongestLengths) {
  for (const std::string prefix : {"\xff\xff\xff\x7f", "\xff\xff\xff\xff"}) {
    std::istringstream in(prefix + "x");
    std::string text = "before";
    EXPECT_NE(SerializationUtils::DeserializeString(in, &text), 0);
    EXPECT_EQ(text, "before");
    EXPECT_TRUE(in.eof());
  }
}

TEST(LengthPrefixTest, RefusesALengthThatFourBytesCannotHold) {
  host::LengthPrefix prefix = {1, 2, 3, 4};
  EXPECT_FALSE(host::encodeLength(0x100000000u, &prefix));
  EXPECT_EQ(prefix, (host::LengthPrefix{1, 2, 3, 4}));
  EXPECT_TRUE(host::encodeLength(0xffffffffu, &prefix));
  EXPECT_EQ(host::decodeLength(prefix), 0xffffffffu);
}
