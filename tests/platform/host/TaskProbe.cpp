// A task for TaskTest: reports its arguments and what it inherited in the file "/report" of the
// root folder, and waits, with a time limit, until it is killed.

#include <dirent.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::string linkAt(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::read_symlink(path, ignored).string();
}

// The lines of /proc/self/status that say which signals are blocked and ignored.
std::string signals() {
  std::ifstream in("/proc/self/status");
  std::string found;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("SigBlk:", 0) == 0 || line.rfind("SigIgn:", 0) == 0) {
      found += line + "\n";
    }
  }
  return found;
}

std::string descriptors() {
  DIR* folder = ::opendir("/proc/self/fd");
  std::string found;
  while (const dirent* entry = ::readdir(folder)) {
    const int number = std::atoi(entry->d_name);
    if (entry->d_name[0] != '.' && number != ::dirfd(folder)) {
      found += "fd " + std::to_string(number) + " " +
               linkAt("/proc/self/fd/" + std::to_string(number)) + "\n";
    }
  }
  ::closedir(folder);
  return found;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string root = std::getenv("ORVANE_ROOT");
  std::string report = descriptors() + signals();
  report += "session " + std::to_string(::getsid(0)) + "\n";
  report += "leader " + std::to_string(::getsid(0) == ::getpid()) + "\n";
  report += "folder " + linkAt("/proc/self/cwd") + "\n";
  report += "root " + root + "\n";
  for (int i = 0; i < argc; ++i) {
    report += "argument " + std::string(argv[i]) + "\n";
  }
  std::ofstream(root + "/report.new") << report;
  std::rename((root + "/report.new").c_str(), (root + "/report").c_str());
  ::alarm(60);
  ::pause();
}
