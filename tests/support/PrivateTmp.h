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
#include <utility>
#include <vector>

namespace support {

// Gives this process, and those that it starts, a mount namespace of their own with an empty /tmp
// in memory. Without root it becomes root of a user namespace. Throws std::runtime_error when the
// system allows neither. Call it before any thread is started. Those of the folders `kept` that lie
// below /tmp stay in sight there.
inline void enterPrivateTmp(const std::vector<std::string>& kept = {}) {
  const auto require = [](bool done, const char* what) {
    if (!done) {
      throw std::runtime_error(std::string("no /tmp of its own: ") + what + ": " +
                               std::strerror(errno));
    }
  };
  const uid_t user = ::getuid();
  const gid_t group = ::getgid();
  if (user == 0) {
    require(::unshare(CLONE_NEWNS) == 0, "mount namespace");
  } else {
    require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "user namespace");
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/setgroups") << "deny";  // or the group may not be told
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
  }
  require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
  std::vector<std::pair<std::string, int>> folders;
  for (const std::string& folder : kept) {
    if (folder.compare(0, 5, "/tmp/") == 0) {
      folders.emplace_back(folder, ::open(folder.c_str(), O_PATH | O_DIRECTORY));
    }
  }
  require(::mount("tmpfs", "/tmp", "tmpfs", 0, "size=300m,mode=1777") == 0, "tmpfs");
  for (const auto& folder : folders) {
    const std::string source = "/proc/self/fd/" + std::to_string(folder.second);
    std::filesystem::create_directories(folder.first);
    require(::mount(source.c_str(), folder.first.c_str(), nullptr, MS_BIND, nullptr) == 0,
            "kept folder");
    ::close(folder.second);
  }
}

}  // namespace support

#endif  // TESTS_SUPPORT_PRIVATETMP_H_
