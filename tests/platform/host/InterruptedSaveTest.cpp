// Interrupts saves in every way and at every step: the file is complete, and the old or the new
// one.

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/NewProcess.h"
#include "tests/support/TemporaryRoot.h"
#include "tests/support/Tracer.h"

using orvane::utilities::CfgWrapper;
using support::codeOf;
using support::passesInNewProcess;
using support::ScopedSetting;
using support::SystemCall;
using support::TemporaryRoot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const char kFolder[] = "/mnt/ext1";
const char kPath[] = "/mnt/ext1/a.cfg";
const int kSavesEach = 1000;

}  // namespace

class InterruptedSaveTest : public testing::Test {
 protected:
  static std::vector<std::string> saver(const std::string& prefix, int from, int count,
                                        int bytes = 10) {
    return {CONFIG_SAVER,         kPath, prefix, std::to_string(from), std::to_string(count),
            std::to_string(bytes)};
  }

  static pid_t spawn(const std::vector<std::string>& command) {
    return support::start(command, STDIN_FILENO, STDOUT_FILENO);
  }

  static int run(const std::vector<std::string>& command) { return codeOf(spawn(command)); }

  // The number that the last save of `prefix` wrote; -1 for none. All keys must have the same
  // number.
  static int lastSaved(const std::string& prefix) {
    const CfgWrapper config(kPath, CfgWrapper::Read);
    const std::string first = config.read<std::string>(prefix + "0", "-1.");
    for (int key = 1; key < 4; ++key) {
      EXPECT_EQ(config.read<std::string>(prefix + std::to_string(key), "-1."), first);
    }
    return std::atoi(first.c_str());
  }

  TemporaryRoot root_;
};

TEST_F(InterruptedSaveTest, TwoProcessesLoseNoKeyOfEachOtherAndReadersSeeWholeFiles) {
  const pid_t one = spawn(saver("one", 1, kSavesEach));
  const pid_t two = spawn(saver("two", 1, kSavesEach));
  std::atomic<bool> isSaving(true);
  int reads = 0;
  std::thread reader([&] {
    int lastOne = -1;
    int lastTwo = -1;
    while (isSaving) {
      const int nowOne = lastSaved("one");
      const int nowTwo = lastSaved("two");
      EXPECT_GE(nowOne, lastOne);
      EXPECT_GE(nowTwo, lastTwo);
      lastOne = nowOne;
      lastTwo = nowTwo;
      ++reads;
    }
  });
  EXPECT_EQ(codeOf(one), 0);
  EXPECT_EQ(codeOf(two), 0);
  isSaving = false;
  reader.join();
  EXPECT_EQ(lastSaved("one"), kSavesEach);
  EXPECT_EQ(lastSaved("two"), kSavesEach);
  EXPECT_GT(reads, 0);
  EXPECT_EQ(root_.log(), "");
}

TEST_F(InterruptedSaveTest, AProcessKilledAtAnyTimeLeavesAWholeFile) {
  ASSERT_EQ(run(saver("a", 1, 1)), 0);
  std::mt19937 random(1);
  int last = 1;
  for (int round = 0; round < 200; ++round) {
    const pid_t process = spawn(saver("a", last + 1, 1000000, 20000));
    for (int i = 0; i < 10000 && lastSaved("a") == last; ++i) {
      ::usleep(1000);  // until it is saving
    }
    ::usleep(std::uniform_int_distribution<useconds_t>(0, 5000)(random));
    ::kill(process, SIGKILL);
    codeOf(process);
    const int now = lastSaved("a");
    ASSERT_GT(now, last) << "round " << round;
    last = now;
  }
  EXPECT_EQ(root_.log(), "");
  ASSERT_EQ(run(saver("a", last + 1, 1)), 0);
  EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".a.cfg.lock", "a.cfg"));
}

TEST_F(InterruptedSaveTest, AProcessKilledAtAnySystemCallLeavesAWholeFile) {
  ASSERT_EQ(run(saver("a", 1, 1)), 0);
  const std::vector<SystemCall> calls = support::callsOf(saver("a", 2, 1));
  ASSERT_GT(calls.size(), 10u);
  std::set<int> seen;
  for (const SystemCall& call : calls) {
    EXPECT_TRUE(
        support::isKilledAt(call, saver("a", 2, 1), [] { ASSERT_EQ(run(saver("a", 1, 1)), 0); }))
        << call.name << ' ' << call.number;
    seen.insert(lastSaved("a"));
  }
  EXPECT_THAT(seen, ElementsAre(1, 2));
  EXPECT_EQ(root_.log(), "");
  ASSERT_EQ(run(saver("a", 3, 1)), 0);
  EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".a.cfg.lock", "a.cfg"));
}

TEST_F(InterruptedSaveTest, AFailureOfAnySystemCallLeavesAWholeFileAndALogLine) {
  ASSERT_EQ(run(saver("a", 1, 1)), 0);
  const std::set<std::string> files = {"openat",     "mkdir",  "flock", "fstat",
                                       "newfstatat", "read",   "write", "fsync",
                                       "close",      "rename", "link",  "unlink"};
  std::set<std::string> failing;
  for (const SystemCall& call : support::callsOf(saver("a", 2, 1))) {
    if (files.count(call.name) == 0) {
      continue;
    }
    for (const std::string error : {"ENOSPC", "EIO", "EDQUOT"}) {
      ASSERT_EQ(run(saver("a", 1, 1)), 0);
      root_.clearLog();
      EXPECT_EQ(support::runInjected(call, "error=" + error, saver("a", 2, 1)), 0);
      const std::string log = root_.log();
      const int now = lastSaved("a");
      EXPECT_TRUE(now == 1 || now == 2) << call.name << ' ' << call.number;
      EXPECT_EQ(now == 1, log.find("which is unchanged") != std::string::npos)
          << call.name << ' ' << call.number << ' ' << error << ' ' << log;
      EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".a.cfg.lock", "a.cfg")) << call.name;
      if (now == 1) {
        failing.insert(call.name);
      }
    }
  }
  for (const std::string name : {"openat", "flock", "read", "write", "fsync", "close", "rename"}) {
    EXPECT_EQ(failing.count(name), 1u) << name;
  }
}

TEST_F(InterruptedSaveTest, SaysSoWhenASavedFileMayNotBeOnTheDiskYet) {
  ASSERT_EQ(run(saver("a", 1, 1)), 0);
  // The file's own is the first, the folder's the second.
  ASSERT_EQ(support::runInjected({"fsync", 2}, "error=EIO", saver("a", 2, 1)), 0);
  EXPECT_EQ(lastSaved("a"), 2);
  EXPECT_THAT(root_.log(), HasSubstr("a power failure could undo it: fsync folder"));
}

TEST_F(InterruptedSaveTest, AFullDiskLeavesTheOldFile) {
  EXPECT_TRUE(passesInNewProcess([this] {
    std::filesystem::create_directories(root_.at(kFolder));
    // A small private disk if the system allows one, else a small limit for file sizes.
    const bool hasNamespace =
        ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    const bool hasDisk = hasNamespace &&
                         ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         ::mount("tmpfs", root_.at(kFolder).c_str(), "tmpfs", 0, "size=64k") == 0;
    if (!hasDisk) {
      const rlimit limit = {16384, 16384};
      ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ASSERT_EQ(run(saver("a", 1, 1, 3000)), 0);
    const std::string before = root_.contentOf(kPath);
    ASSERT_EQ(run(saver("a", 2, 1, 30000)), 0);
    EXPECT_EQ(root_.contentOf(kPath), before);
    EXPECT_EQ(lastSaved("a"), 1);
    EXPECT_THAT(root_.log(), HasSubstr("Cannot save " + root_.at(kPath)));
    EXPECT_THAT(root_.log(), HasSubstr(hasDisk ? "free some space" : "write: File too large"));
    EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".a.cfg.lock", "a.cfg"));
    ASSERT_EQ(run(saver("a", 3, 1, 3000)), 0);
    EXPECT_EQ(lastSaved("a"), 3);
  }));
}

TEST_F(InterruptedSaveTest, AFileThatMayNotGrowStaysTheOldOne) {
  EXPECT_TRUE(passesInNewProcess([this] {
    ASSERT_EQ(run(saver("a", 1, 1)), 0);
    const rlimit limit = {4096, 4096};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    ASSERT_EQ(run(saver("a", 2, 1, 30000)), 0);
    EXPECT_EQ(lastSaved("a"), 1);
    EXPECT_THAT(root_.log(), HasSubstr("write: File too large"));
  }));
}
