#include "base/DryRun.h"

#include <unistd.h>

#include <cstdlib>

namespace base {

namespace {
const char kSwitch[] = "ORVANE_DRY_RUN";
}  // namespace

DryRun::DryRun(const std::string& curlCommand) : curlCommand_(curlCommand) {}

DryRun::~DryRun() = default;

const char* DryRun::what() const noexcept {
  return "dry run: the request was not sent";
}

const std::string& DryRun::curlCommand() const {
  return curlCommand_;
}

void setDryRun(bool on) {
  if (on) {
    ::setenv(kSwitch, std::to_string(::getpid()).c_str(), 1);
  } else {
    ::unsetenv(kSwitch);
  }
}

bool isDryRun() {
  const char* process = std::getenv(kSwitch);
  return process != nullptr && process == std::to_string(::getpid());
}

}  // namespace base
