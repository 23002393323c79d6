// The class SerializationUtils: the encoding of the sample queue file.

#include <sys/resource.h>

#include <algorithm>
#include <sstream>

#include <orvane/utilities/SerializationUtils.h>

#include "platform_check/Check.h"

using orvane::utilities::SerializationUtils;

namespace platform_check {

namespace {

// g++ and clang++ announce their sanitizers in two ways.
#if defined(__has_feature)
#define HAS_SANITIZER(name) __has_feature(name)
#else
#define HAS_SANITIZER(name) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    HAS_SANITIZER(address_sanitizer) || HAS_SANITIZER(thread_sanitizer)
#define IS_SANITIZED
#endif

// Sanitizers reserve so much address space that they cannot run with a limit.
void limitMemory() {
#ifndef IS_SANITIZED
  // More than the program and a long text need, and less than a damaged length can ask for.
  const rlim_t bytes = rlim_t{1} << 30;
  const rlimit limit = {bytes, bytes};
  ::setrlimit(RLIMIT_AS, &limit);
#endif
}

std::string encoded(const std::string& text) {
  std::ostringstream out;
  requireEqual("the result of SerializeString()", SerializationUtils::SerializeString(text, out),
               0);
  return out.str();
}

void requireNext(std::istream& in, const std::string& expected) {
  std::string text = "before";
  requireEqual("the result of DeserializeString()",
               SerializationUtils::DeserializeString(in, &text), 0);
  requireEqual("the decoded string", text, expected);
}

std::string allBytes() {
  return everyByteButNul() + std::string("\0\0end", 5);
}

void anyBytesComeBack(const Settings&) {
  for (const std::string& text : {allBytes(), std::string("a"), std::string(1, '\0'),
                                  std::string(1, '\n'), std::string("12:3")}) {
    std::istringstream in(encoded(text));
    requireNext(in, text);
  }
}

void emptyStringComesBack(const Settings&) {
  std::istringstream in(encoded(""));
  require(!in.str().empty(), "an empty string was encoded as no bytes at all");
  requireNext(in, "");
}

void longStringComesBack(const Settings&) {
  const std::string text(200000, '\xff');
  std::istringstream in(encoded(text));
  requireNext(in, text);
}

void readsOneStringOnly(const Settings&) {
  std::istringstream in(encoded("first") + encoded("") + encoded(allBytes()) + "x");
  requireNext(in, "first");
  requireNext(in, "");
  requireNext(in, allBytes());
  require(in.get() == 'x', "DeserializeString() read beyond the end of the string");
}

void truncationIsAnError(const Settings&) {
  const std::string whole = encoded(allBytes());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    std::istringstream in(whole.substr(0, length));
    std::string text;
    const std::string which = std::to_string(length) + " of " + std::to_string(whole.size()) +
                              " bytes of an encoded string";
    require(SerializationUtils::DeserializeString(in, &text) != 0,
            "DeserializeString() returned 0 for " + which);
    require(in.eof(), "the stream is not at its end after " + which);
  }
}

// As the library reads the queue file: it ends at the end of the file only.
void requireReadingEnds(const std::string& bytes) {
  std::istringstream in(bytes);
  std::string text;
  for (std::size_t reads = 0; in.get() != std::istream::traits_type::eof(); ++reads) {
    require(reads <= bytes.size(), "a loop that reads until the end of the file does not end");
    in.unget();
    const int result = SerializationUtils::DeserializeString(in, &text);
    require(result != 0 || text.size() <= bytes.size(), "more bytes were decoded than exist");
  }
}

void damageEndsTheReading(const Settings&) {
  limitMemory();
  const std::string whole = encoded("title") + encoded("/path");
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char byte : {'\0', '\x7f', '\x80', '\xff', '9', ' '}) {
      std::string damaged = whole;
      damaged[at] = byte;
      requireReadingEnds(damaged);
    }
  }
  for (const char byte : {'\0', '\x7f', '\xff', '9', 'x'}) {
    requireReadingEnds(std::string(64, byte));
    requireReadingEnds(std::string(3, '\xff') + std::string(64, byte));
  }
}

// Takes a few bytes, and no more.
class FullDevice : public std::streambuf {
 public:
  explicit FullDevice(int bytes) : left_(bytes) {}

 protected:
  int_type overflow(int_type byte) override {
    return left_-- > 0 ? traits_type::not_eof(byte) : traits_type::eof();
  }

 private:
  int left_;
};

void failedOutputIsAnError(const Settings&) {
  const int size = static_cast<int>(encoded("string").size());
  for (int bytes = 0; bytes < size; ++bytes) {
    FullDevice device(bytes);
    std::ostream out(&device);
    require(SerializationUtils::SerializeString("string", out) != 0,
            "SerializeString() returned 0, though only " + std::to_string(bytes) + " of " +
                std::to_string(size) + " bytes were written");
  }
}

void failedInputIsAtItsEnd(const Settings&) {
  for (const auto state : {std::ios::failbit, std::ios::badbit}) {
    std::istringstream in(encoded("string"));
    in.setstate(state);
    std::string text;
    require(SerializationUtils::DeserializeString(in, &text) != 0,
            "DeserializeString() returned 0 for a stream that had failed before");
    require(in.eof(), "a stream that had failed before is not at its end after the call");
  }
}

}  // namespace

const std::vector<Check> kEncodingChecks = {
    {"encoding", "any-bytes-come-back",
     "Store the length of the string; do not look for a byte that ends it.", &anyBytesComeBack},
    {"encoding", "empty-string-comes-back", "Write the length of an empty string, too.",
     &emptyStringComesBack},
    {"encoding", "long-string-comes-back", "Use at least 32 bits for the length.",
     &longStringComesBack},
    {"encoding", "reads-one-string-only",
     "Read as many bytes as the length says; do not look at the byte behind them.",
     &readsOneStringOnly},
    {"encoding", "truncation-is-an-error",
     "Return a value other than 0 and set eofbit when the stream ends before the string.",
     &truncationIsAnError},
    {"encoding", "damage-ends-the-reading",
     "Do not allocate memory for a length before that many bytes were read; set eofbit when the "
     "bytes are not an encoded string.",
     &damageEndsTheReading},
    {"encoding", "failed-output-is-an-error", "Look at the state of the stream after writing.",
     &failedOutputIsAnError},
    {"encoding", "failed-input-is-at-its-end",
     "Set eofbit when the stream had failed before: the library reads until the end of the file.",
     &failedInputIsAtItsEnd},
};

}  // namespace platform_check
