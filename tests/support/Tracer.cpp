#include "tests/support/Tracer.h"

#include <csignal>
#include <fstream>
#include <map>
#include <regex>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

namespace {

std::vector<std::string> traced(const std::vector<std::string>& options,
                                const std::vector<std::string>& command) {
  // The leak checker of a sanitized build cannot work beside a tracer.
  std::vector<std::string> all = {"env", "ASAN_OPTIONS=detect_leaks=0", STRACE, "-f", "-qq"};
  all.insert(all.end(), options.begin(), options.end());
  all.insert(all.end(), command.begin(), command.end());
  return all;
}

}  // namespace

std::vector<SystemCall> callsOf(const std::vector<std::string>& command) {
  const TemporaryFolder folder;
  const std::string trace = folder.path() + "/trace";
  outputOf(traced({"-o", trace}, command));
  std::ifstream lines(trace);
  const std::regex call("^[0-9]+ +([a-z0-9_]+)\\(");
  std::map<std::string, int> counts;
  std::vector<SystemCall> calls;
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_search(line, match, call)) {
      const SystemCall found = {match[1], ++counts[match[1]]};
      const bool isOfMemory = found.name == "mmap" || found.name == "munmap";  // also a sanitizer's
      if (found.name != "getppid" && counts["getppid"] == 1 && !isOfMemory) {
        calls.push_back(found);
      }
    }
  }
  return calls;
}

int runInjected(const SystemCall& call, const std::string& what,
                const std::vector<std::string>& command) {
  const std::string change =
      "inject=" + call.name + ":" + what + ":when=" + std::to_string(call.number);
  return run(traced({"-o", "/dev/null", "-e", change}, command)).code;
}

bool isKilledAt(const SystemCall& call, const std::vector<std::string>& command,
                const std::function<void()>& prepare) {
  for (int runs = 0; runs < 20; ++runs) {
    prepare();
    if (runInjected(call, "signal=KILL", command) == 128 + SIGKILL) {
      return true;
    }
  }
  return false;
}

}  // namespace support
