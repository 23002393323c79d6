#include "platform_check/Task.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace platform_check {

const char kTaskArgument[] = "--as-task";

bool isTask(int count, char** arguments) {
  return count >= 3 && arguments[1] == std::string(kTaskArgument);
}

int runTask(int count, char** arguments) {
  const int kWaits = 6000;
  const useconds_t kWaitMicroseconds = 20000;
  const std::string file = arguments[2];
  {
    std::ofstream report(file + ".new");
    report << ::getpid() << "\n" << ::getsid(0) << "\n";
    for (int i = 0; i < count; ++i) {
      report << arguments[i] << "\n";
    }
  }
  if (std::rename((file + ".new").c_str(), file.c_str()) != 0) {
    return 1;
  }
  // The report goes with the folder of the run.
  const auto exists = [](const std::string& path) { return ::access(path.c_str(), F_OK) == 0; };
  for (int i = 0; i < kWaits && exists(file) && !exists(file + ".end"); ++i) {
    ::usleep(kWaitMicroseconds);
  }
  return 0;
}

}  // namespace platform_check
