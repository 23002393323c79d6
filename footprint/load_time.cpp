// Prints the median time, in microseconds, that the dynamic linker needs to load a library with all
// symbols bound, into a process that has already loaded its dependencies. Each time is from a new
// process.
// Usage: load_time LIBRARY

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

constexpr int kTimes = 201;

double microsecondsToLoad(const char* library) {
  const auto start = std::chrono::steady_clock::now();
  const void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  const auto end = std::chrono::steady_clock::now();
  if (handle == nullptr) {
    std::fprintf(stderr, "load_time: %s\n", dlerror());
    return -1;
  }
  return std::chrono::duration<double, std::micro>(end - start).count();
}

double inNewProcess(const char* library) {
  int ends[2];
  if (pipe(ends) != 0) {
    return -1;
  }
  const pid_t child = fork();
  if (child == 0) {
    const double time = microsecondsToLoad(library);
    _exit(write(ends[1], &time, sizeof time) == sizeof time ? 0 : 1);
  }
  close(ends[1]);
  double time = -1;
  const ssize_t length = read(ends[0], &time, sizeof time);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return length == sizeof time ? time : -1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::fputs("usage: load_time LIBRARY\n", stderr);
    return 2;
  }
  std::vector<double> times;
  for (int i = 0; i < kTimes; ++i) {
    times.push_back(inNewProcess(arguments[1]));
  }
  std::sort(times.begin(), times.end());
  if (times.front() < 0) {
    return 1;
  }
  std::printf("%.0f\n", times[times.size() / 2]);
  return 0;
}
