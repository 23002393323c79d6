// For tests of the queue file, whose path is fixed: a /tmp of the program's own.

#ifndef TESTS_SUPPORT_PRIVATETMP_H_
#define TESTS_SUPPORT_PRIVATETMP_H_

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace support {

// Gives this process, and those that it starts, a mount namespace of their own with an empty /tmp
// in memory. Without root it becomes root of a user namespace. Throws std::runtime_error when the
// system allows neither. Call it before any thread is started. `kept`, if it is a folder below
// /tmp, stays in sight there.
inline void enterPrivateTmp(const std::string& kept = std::string()) {
  const auto require = [](bool done, const char* what) {
    if (!done) {
      throw std::runtime_error(std::string("no /tmp of its own: ") + what + ": " +
                               std::strerror(errno));
    }
  };
  const uid_t user = ::getuid();
  if (user == 0) {
    require(::unshare(CLONE_NEWNS) == 0, "mount namespace");
  } else {
    require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "user namespace");
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  }
  require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
  const int keptFolder =
      kept.compare(0, 5, "/tmp/") == 0 ? ::open(kept.c_str(), O_PATH | O_DIRECTORY) : -1;
  require(::mount("tmpfs", "/tmp", "tmpfs", 0, "size=300m,mode=1777") == 0, "tmpfs");
  if (keptFolder >= 0) {
    const std::string source = "/proc/self/fd/" + std::to_string(keptFolder);
    std::filesystem::create_directories(kept);
    require(::mount(source.c_str(), kept.c_str(), nullptr, MS_BIND, nullptr) == 0, "kept folder");
    ::close(keptFolder);
  }
}

}  // namespace support

#endif  // TESTS_SUPPORT_PRIVATETMP_H_
