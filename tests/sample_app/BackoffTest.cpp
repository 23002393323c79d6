#include "sample_app/Backoff.h"

#include <vector>

#include <gmock/gmock.h>

using sample_app::Backoff;
using ::testing::ElementsAre;

namespace {

std::vector<int> waits(Backoff* backoff, int count) {
  std::vector<int> all;
  for (int index = 0; index < count; ++index) {
    all.push_back(static_cast<int>(backoff->next().count()));
  }
  return all;
}

}  // namespace

TEST(BackoffTest, WaitsTwiceAsLongEachTimeUpToSixtyTimesTheFirst) {
  Backoff backoff(std::chrono::milliseconds(1000));
  EXPECT_THAT(waits(&backoff, 8), ElementsAre(1000, 2000, 4000, 8000, 16000, 32000, 60000, 60000));
}

TEST(BackoffTest, BeginsAgainAfterASuccess) {
  Backoff backoff(std::chrono::milliseconds(5));
  waits(&backoff, 4);
  backoff.reset();
  EXPECT_THAT(waits(&backoff, 2), ElementsAre(5, 10));
}
