// Command line, clock, loop and result of the two programs whose operations are compared, so that
// the programs differ in the operation only. One thread.
//
// Usage of such a program:
//   PROGRAM ROW COUNT   performs the operation COUNT times, after a few that are not measured; the
//                       server decides whether the connection is kept
//   PROGRAM ROW cold    performs it once, measured from the start of a new process (exec)
// Prints one line of JSON: "nanoseconds", the median time of one operation, and "fields", the texts
// that the last operation read.

#ifndef BENCH_MEASURE_H_
#define BENCH_MEASURE_H_

#include <chrono>
#include <functional>
#include <vector>

#include "bench/Fields.h"

namespace bench {

using Clock = std::chrono::steady_clock;  // continues through exec

struct Plan {
  std::size_t warmUps;
  std::size_t count;
  Clock::time_point processStart;  // start of the measurement for a single operation
  bool isCold;
};

struct Result {
  std::vector<Clock::duration> durations;
  Fields fields;
};

// One operation that a program offers under a name.
struct Row {
  const char* name;
  std::function<Result(const Plan&)> run;
};

// A row from `prepare`, which is called once and returns the operation: a function that performs
// the operation and returns the fields that it read.
template <typename Prepare>
Row row(const char* name, Prepare prepare) {
  return {name, [prepare](const Plan& plan) {
            auto perform = prepare();
            for (std::size_t i = 0; i < plan.warmUps; ++i) {
              perform();
            }
            Result result;
            result.durations.reserve(plan.count);
            for (std::size_t i = 0; i < plan.count; ++i) {
              const Clock::time_point start = plan.isCold ? plan.processStart : Clock::now();
              const auto read = perform();
              result.durations.push_back(Clock::now() - start);
              if (i + 1 == plan.count) {
                result.fields = fieldsOf(read);
              }
            }
            return result;
          }};
}

// Implements main(). Returns 0; 1 when the operation read nothing; 2, with a line on standard
// error, for wrong usage or an exception.
int runProgram(int argc, char** argv, const std::vector<Row>& rows);

}  // namespace bench

#endif  // BENCH_MEASURE_H_
