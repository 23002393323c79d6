// The results as text: TAP version 14 for people and programs, JUnit XML for CI.

#ifndef PLATFORM_CHECK_REPORT_H_
#define PLATFORM_CHECK_REPORT_H_

#include <iosfwd>
#include <vector>

#include "platform_check/Check.h"
#include "platform_check/Child.h"

namespace platform_check {

struct CheckResult {
  Check check;
  Result result;
  double seconds;
};

// The version line and the plan of `count` checks.
void writeTapStart(std::ostream& out, std::size_t count);

// The lines of one result; `number` counts from 1. A failure has its reason and its remedy as YAML.
void writeTapResult(std::ostream& out, std::size_t number, const CheckResult& result);

// A comment line with the number of results of each kind.
void writeTapEnd(std::ostream& out, const std::vector<CheckResult>& results);

void writeJunit(std::ostream& out, const std::vector<CheckResult>& results);

}  // namespace platform_check

#endif  // PLATFORM_CHECK_REPORT_H_
