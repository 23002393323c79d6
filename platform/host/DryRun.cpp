#include "platform/host/DryRun.h"

#include <atomic>

namespace host {

namespace {
std::atomic<bool> dryRun(false);
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
  dryRun = on;
}

bool isDryRun() {
  return dryRun;
}

}  // namespace host
