// The frame of the two programs whose whole operations are compared: command line, clock, loop and
// result, so that they differ in the operation alone. One thread.
//
// Usage of such a program:
//   PROGRAM ROW COUNT   performs the operation COUNT times on one connection or several, as the
//                       server has it, after some that are not measured
//   PROGRAM ROW cold    performs it once, measured from the start of a fresh process (exec)
// Prints one line of JSON: "nanoseconds", the median of one operation, and "fields", what the last
// one read.

#ifndef BENCH_MEASURE_H_
#define BENCH_MEASURE_H_

#include <chrono>
#include <functional>
#include <vector>

#include "bench/Fields.h"

namespace bench {

using Clock = std::chrono::steady_clock;  // runs on through exec

struct Plan {
  std::size_t warmUps;
  std::size_t count;
  Clock::time_point processStart;  // the first operation counts from here, when it is the only one
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

// A row from `prepare`, which is called once and returns the operation: a function that performs it
// and returns what it read.
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

// The whole of main(). Returns 0; 1 when the operation read nothing; 2, with a line on standard
// error, for wrong use or an exception.
int runProgram(int argc, char** argv, const std::vector<Row>& rows);

}  // namespace bench

#endif  // BENCH_MEASURE_H_
