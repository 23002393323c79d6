#include "sample_app/Settings.h"

#include "base/Settings.h"

namespace sample_app {

namespace {

const base::Setting kIdle = {"SAMPLE_APP_IDLE", "5000",
                             "milliseconds that the queue is empty before the application "
                             "exits"};
const base::Setting kFirstWait = {"SAMPLE_APP_FIRST_WAIT", "1000",
                                  "milliseconds to wait after the first failed attempt"};
constexpr long long kOneHour = 3600000;

}  // namespace

std::chrono::milliseconds idleTime() {
  return std::chrono::milliseconds(base::number(kIdle, 0, kOneHour));
}

std::chrono::milliseconds firstWait() {
  return std::chrono::milliseconds(base::number(kFirstWait, 1, kOneHour));
}

}  // namespace sample_app
