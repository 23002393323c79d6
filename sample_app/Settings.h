// The settings of the application: environment variables, like those of the host.

#ifndef SAMPLE_APP_SETTINGS_H_
#define SAMPLE_APP_SETTINGS_H_

#include <chrono>

namespace sample_app {

// How long the queue has to be empty before the application exits: SAMPLE_APP_IDLE, in
// milliseconds, 5000 by default.
std::chrono::milliseconds idleTime();

// How long to wait after the first failed attempt: SAMPLE_APP_FIRST_WAIT, in milliseconds, 1000 by
// default.
std::chrono::milliseconds firstWait();

}  // namespace sample_app

#endif  // SAMPLE_APP_SETTINGS_H_
