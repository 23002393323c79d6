#include "bookstore/terminal/Spinner.h"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryRoot.h"

using bookstore::Spinner;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

// What a spinner that has ended left in the stream.
std::string spin(bool errIsTerminal, const std::string& terminalKind) {
  const support::ScopedSetting kind("TERM", terminalKind);
  std::ostringstream out;
  std::ostringstream err;
  { const Spinner spinner({out, err, true, errIsTerminal}, "Waiting"); }
  EXPECT_THAT(out.str(), IsEmpty());
  return err.str();
}

}  // namespace

TEST(SpinnerTest, IsThereAtOnceAndGoesWithTheObject) {
  EXPECT_THAT(spin(true, "xterm"), StartsWith("| Waiting\r"));
  EXPECT_THAT(spin(true, "xterm"), EndsWith("\r\033[K"));
}

TEST(SpinnerTest, TakesTheOldTextOffTheLineForANewOne) {
  const support::ScopedSetting kind("TERM", "xterm");
  std::ostringstream out;
  std::ostringstream err;
  {
    Spinner spinner({out, err, true, true}, "Waiting for long");
    spinner.say("Done");
  }
  EXPECT_THAT(err.str(), ::testing::ContainsRegex("Waiting for long\r.\\[K. Done\r"));
  std::ostringstream nothing;
  {
    Spinner spinner({out, nothing, true, false}, "Waiting");
    spinner.say("Done");
  }
  EXPECT_THAT(nothing.str(), IsEmpty());
}

TEST(SpinnerTest, WritesNothingWhereThereIsNoTerminal) {
  EXPECT_THAT(spin(false, "xterm"), IsEmpty());
}

TEST(SpinnerTest, WritesNothingToATerminalThatCannotMoveItsCursor) {
  EXPECT_THAT(spin(true, "dumb"), IsEmpty());
  EXPECT_THAT(spin(true, ""), IsEmpty());
}

namespace {

// A stream that tells when the second shape was drawn.
class SecondShape : public std::stringbuf {
 public:
  void wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    drawn_.wait_for(lock, std::chrono::seconds(30), [this] { return isDrawn_; });
  }
  bool isDrawn() const { return isDrawn_; }

 protected:
  int sync() override {
    const std::lock_guard<std::mutex> lock(mutex_);
    isDrawn_ = isDrawn_ || str().find("\r/ Waiting\r") != std::string::npos;
    drawn_.notify_one();
    return 0;
  }

 private:
  std::mutex mutex_;
  std::condition_variable drawn_;
  bool isDrawn_ = false;
};

}  // namespace

TEST(SpinnerTest, TurnsWhileItsMakerWaits) {
  const support::ScopedSetting kind("TERM", "xterm");
  SecondShape shapes;
  std::ostream err(&shapes);
  std::ostringstream out;
  {
    const Spinner spinner({out, err, true, true}, "Waiting");
    shapes.wait();
  }
  EXPECT_TRUE(shapes.isDrawn());
}
