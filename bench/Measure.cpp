#include "bench/Measure.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>

#include <json/json.h>

namespace bench {

namespace {

const char kUsage[] = "usage: PROGRAM ROW COUNT|cold";

// The command line of the new process contains the start time.
[[noreturn]] void startAfresh(char** argv) {
  char start[] = "started";
  std::string now = std::to_string(Clock::now().time_since_epoch().count());
  char* arguments[] = {argv[0], argv[1], start, &now[0], nullptr};
  ::execv("/proc/self/exe", arguments);
  throw std::system_error(errno, std::generic_category(), "cannot start a new process");
}

Plan planOf(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[2], "started") == 0) {
    return {0, 1, Clock::time_point(Clock::duration(std::stoll(argv[3]))), true};
  }
  if (argc != 3) {
    throw std::invalid_argument(kUsage);
  }
  if (std::strcmp(argv[2], "cold") == 0) {
    startAfresh(argv);
  }
  const std::size_t count = std::stoul(argv[2]);
  if (count == 0) {
    throw std::invalid_argument(kUsage);
  }
  return {count / 10 + 1, count, Clock::time_point(), false};
}

const Row& rowNamed(const std::string& name, const std::vector<Row>& rows) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return name == row.name; });
  if (found == rows.end()) {
    throw std::invalid_argument("unknown row '" + name + "'");
  }
  return *found;
}

double median(std::vector<Clock::duration> durations) {
  const auto middle = durations.begin() + static_cast<std::ptrdiff_t>(durations.size() / 2);
  std::nth_element(durations.begin(), middle, durations.end());
  return std::chrono::duration<double, std::nano>(*middle).count();
}

void print(const Result& result) {
  Json::Value line;
  line["nanoseconds"] = median(result.durations);
  line["fields"] = Json::arrayValue;
  for (const std::string& field : result.fields) {
    line["fields"].append(field);
  }
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  std::cout << Json::writeString(writer, line) << std::endl;
}

}  // namespace

int runProgram(int argc, char** argv, const std::vector<Row>& rows) {
  try {
    const Plan plan = planOf(argc, argv);
    const Result result = rowNamed(argv[1], rows).run(plan);
    print(result);
    return result.fields.empty() ? 1 : 0;
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << "\n";
    return 2;
  }
}

}  // namespace bench
