#include "tests/support/StoreService.h"

#include <exception>
#include <sstream>
#include <stdexcept>

#include "tests/support/ChildProcess.h"
#include "tests/support/Json.h"

namespace support {

namespace {

// The value of one "name=value" line.
std::string field(const std::string& lines, const std::string& name) {
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    if (line.compare(0, name.size() + 1, name + "=") == 0) {
      return line.substr(name.size() + 1);
    }
  }
  throw std::runtime_error("no " + name + " in: " + lines);
}

}  // namespace

StoreService::StoreService() {
  start();
}

StoreService::~StoreService() {
  try {
    stop();
  } catch (const std::exception&) {
    // Nothing is left to do for a test that ends; the service is bound to its folder.
  }
}

void StoreService::start() {
  const Ended started = runReading(lifeline_.childEnd(), {STORE_SCRIPT, "start", "--end-with-stdin",
                                                          "--state", folder() + "/state"});
  if (started.code != 0) {
    throw std::runtime_error("the store service does not start: " + started.output);
  }
  const std::string& lines = started.output;
  port_ = field(lines, "port");
  control_ = field(lines, "control");
  authority_ = field(lines, "ca");
}

void StoreService::stop() {
  outputOf({STORE_SCRIPT, "stop", "--state", folder() + "/state"});
}

std::string StoreService::connectTo() const {
  return "::127.0.0.1:" + port_;
}

std::string StoreService::control(const std::string& method, const std::string& path,
                                  const std::string& body) {
  return outputOf({"curl", "--silent", "--show-error", "--fail-with-body", "--max-time", "20",
                   "--request", method, "--data-binary", "@-", control_ + path},
                  body);
}

void StoreService::addFault(const std::string& fault) {
  control("POST", "/faults", fault);
}

void StoreService::change(const std::string& settings) {
  control("PATCH", "/settings", settings);
}

void StoreService::reset(const std::string& line) {
  control("DELETE", "/faults");
  control("DELETE", "/requests");
  change("{\"line\":\"" + line + "\",\"cacheIdHeader\":\"X-Magento-Cache-Id\"}");
}

Json::Value StoreService::requests() {
  return parseJson(control("GET", "/requests"));
}

int StoreService::requestsOf(const std::string& operation) {
  int count = 0;
  for (const Json::Value& request : requests()) {
    count += request["operation"] == operation ? 1 : 0;
  }
  return count;
}

}  // namespace support
