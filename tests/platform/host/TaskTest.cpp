#include <fcntl.h>
#include <ov_sdk.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"
#include "tests/support/TemporaryRoot.h"
#include "tests/support/WaitUntil.h"

using support::passesInNewProcess;
using support::ScopedSetting;
using support::TemporaryRoot;
using support::waitUntil;
using testing::HasSubstr;
using testing::Not;

namespace {

const char kPath[] = "/ombrel/bin/probe.app";
const char kReport[] = "/report";

}  // namespace

class TaskTest : public testing::Test {
 protected:
  ~TaskTest() override {
    for (const int task : started_) {
      ::kill(task, SIGKILL);
    }
    EXPECT_TRUE(
        waitUntil([this] { return std::none_of(started_.begin(), started_.end(), isRunning); }));
  }

  // The task may be a zombie, which has no executable any more.
  static bool isRunning(int process) {
    struct stat status = {};
    return ::stat(("/proc/" + std::to_string(process) + "/exe").c_str(), &status) == 0;
  }

  static void install(const TemporaryRoot& root) {
    std::filesystem::create_directories(root.at("/ombrel/bin"));
    std::filesystem::copy_file(TASK_PROBE, root.at(kPath));
  }

  static void installScript(const TemporaryRoot& root, const std::string& text) {
    root.put(kPath, text);
    std::filesystem::permissions(root.at(kPath), std::filesystem::perms::owner_all);
  }

  int start(const char* path = kPath) {
    char* arguments[] = {const_cast<char*>(path), nullptr};
    const int task = NewTask(path, arguments, "probe.app", "probe.app", nullptr, 37);
    if (task > 0) {
      started_.push_back(task);
    }
    return task;
  }

  void end(int task) {
    ASSERT_EQ(::kill(task, SIGKILL), 0);
    ASSERT_TRUE(waitUntil([task] { return !isRunning(task); }));
  }

  std::string report() const {
    EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(root_.at(kReport)); }));
    return root_.contentOf(kReport);
  }

  TemporaryRoot root_;
  std::vector<int> started_;
};

TEST_F(TaskTest, StartsTheExecutableBelowTheRootAndFindsIt) {
  install(root_);
  EXPECT_LE(FindTaskByAppName(kPath), 0);
  const int task = start();
  ASSERT_GT(task, 0);
  EXPECT_EQ(FindTaskByAppName(kPath), task);
  EXPECT_EQ(root_.log(), "");
}

TEST_F(TaskTest, DoesNotTakeAZombieForARunningTask) {
  install(root_);
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(root_.at(kPath).c_str(), "probe", nullptr);
    ::_exit(127);
  }
  ASSERT_TRUE(waitUntil([] { return FindTaskByAppName(kPath) > 0; }));
  ::kill(child, SIGKILL);
  siginfo_t info = {};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
  EXPECT_LE(FindTaskByAppName(kPath), 0);
  ::waitpid(child, nullptr, 0);
}

TEST_F(TaskTest, LeavesNoChildToTheCaller) {
  install(root_);
  ASSERT_GT(start(), 0);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(TaskTest, GivesTheTaskASessionOfItsOwnWithoutATerminal) {
  install(root_);
  ASSERT_GT(start(), 0);
  const std::string given = report();
  EXPECT_THAT(given, Not(HasSubstr("session " + std::to_string(::getsid(0)) + "\n")));
  EXPECT_THAT(given, HasSubstr("leader 0\n"));
  EXPECT_THAT(given, HasSubstr("folder /\n"));
}

TEST_F(TaskTest, GivesTheTaskNoDescriptors) {
  install(root_);
  const int inherited = ::dup2(STDERR_FILENO, 200);
  ASSERT_EQ(inherited, 200);
  ASSERT_GT(start(), 0);
  ::close(inherited);
  const std::string given = report();
  EXPECT_EQ(given.substr(0, given.find("Sig")), "fd 0 /dev/null\nfd 1 /dev/null\nfd 2 /dev/null\n");
}

TEST_F(TaskTest, GivesTheTaskItsStreamsAlsoWhenTheCallerHasNone) {
  install(root_);
  EXPECT_TRUE(passesInNewProcess([this] {
    const int kept = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 100);
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
      ::close(descriptor);
    }
    const int task = start();
    started_.clear();
    const std::string given = report();
    const int missing = start("/missing");
    ::dup2(kept, STDERR_FILENO);
    ::kill(task, SIGKILL);
    EXPECT_EQ(missing, -1);
    EXPECT_EQ(given.substr(0, given.find("Sig")),
              "fd 0 /dev/null\nfd 1 /dev/null\nfd 2 /dev/null\n");
  }));
}

TEST_F(TaskTest, GivesTheTaskTheUsualSignals) {
  install(root_);
  EXPECT_TRUE(passesInNewProcess([this] {
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGHUP, SIG_IGN);
    sigset_t some;
    ::sigemptyset(&some);
    ::sigaddset(&some, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &some, nullptr);
    const int task = start();
    started_.clear();
    const std::string given = report();
    ::kill(task, SIGKILL);
    EXPECT_THAT(given, HasSubstr("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(given, HasSubstr("SigIgn:\t0000000000000000\n"));
    sigset_t now;
    ::sigprocmask(SIG_BLOCK, nullptr, &now);
    EXPECT_EQ(::sigismember(&now, SIGTERM), 1);
    EXPECT_EQ(::sigismember(&now, SIGINT), 0);
  }));
}

TEST_F(TaskTest, NamesTheTaskByItsPathWithoutArguments) {
  install(root_);
  started_.push_back(NewTask(kPath, nullptr, nullptr, nullptr, nullptr, 0));
  EXPECT_THAT(report(), HasSubstr("argument /ombrel/bin/probe.app\n"));
}

TEST_F(TaskTest, GivesTheTaskTheSameRootAlsoWhenItIsNamedRelatively) {
  install(root_);
  const std::string relative = std::filesystem::relative(root_.path()).string();
  const ScopedSetting setting("ORVANE_ROOT", relative);
  ASSERT_GT(start(), 0);
  const std::string given = report();
  const std::size_t begin = given.find("root ") + 5;
  const std::string root = given.substr(begin, given.find('\n', begin) - begin);
  EXPECT_EQ(root.front(), '/');
  EXPECT_TRUE(std::filesystem::equivalent(root, root_.path()));
}

TEST_F(TaskTest, SaysSoWhenTheExecutableIsMissing) {
  EXPECT_EQ(start(), -1);
  EXPECT_THAT(root_.log(), HasSubstr(root_.at(kPath)));
  EXPECT_THAT(root_.log(), HasSubstr("No such file or directory"));
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(TaskTest, SaysSoWhenTheFileIsNotExecutable) {
  root_.put(kPath, "text");
  EXPECT_EQ(start(), -1);
  EXPECT_THAT(root_.log(), HasSubstr("Permission denied"));
  EXPECT_EQ(start(""), -1);
  EXPECT_EQ(NewTask(nullptr, nullptr, nullptr, nullptr, nullptr, 0), -1);
}

TEST_F(TaskTest, StartsTasksFromManyThreadsAtOnce) {
  install(root_);
  std::atomic<bool> isBusy(true);
  std::thread allocating([&] {
    while (isBusy) {
      std::string(1000, 'x').append(1000, 'y');
    }
  });
  std::vector<int> tasks(16);
  std::vector<std::thread> starting;
  for (int& task : tasks) {
    starting.emplace_back(
        [&task] { task = NewTask(kPath, nullptr, nullptr, nullptr, nullptr, 0); });
  }
  for (std::thread& thread : starting) {
    thread.join();
  }
  isBusy = false;
  allocating.join();
  started_ = tasks;
  EXPECT_THAT(tasks, testing::Each(testing::Gt(0)));
}

TEST_F(TaskTest, FindsNothingThatIsMissingOrNoFile) {
  EXPECT_LE(FindTaskByAppName(kPath), 0);
  EXPECT_LE(FindTaskByAppName(""), 0);
  EXPECT_LE(FindTaskByAppName(nullptr), 0);
  std::filesystem::create_directories(root_.at(kPath));
  EXPECT_LE(FindTaskByAppName(kPath), 0);
}

TEST_F(TaskTest, DoesNotTakeATaskOfAnotherRootForItsOwn) {
  install(root_);
  ASSERT_GT(start(), 0);
  const TemporaryRoot other;
  install(other);
  EXPECT_LE(FindTaskByAppName(kPath), 0);
}

TEST_F(TaskTest, TellsRootsApartThatShareOneFile) {
  install(root_);
  const int task = start();
  ASSERT_GT(task, 0);
  {
    const TemporaryRoot other;
    std::filesystem::create_directories(other.at("/ombrel/bin"));
    std::filesystem::create_symlink(root_.at(kPath), other.at(kPath));
    EXPECT_LE(FindTaskByAppName(kPath), 0);
  }
  EXPECT_EQ(FindTaskByAppName(kPath), task);
}

TEST_F(TaskTest, FindsAScript) {
  for (const std::string first : {"#!/bin/sh", "#! /bin/sh -e", "#!/usr/bin/env sh"}) {
    const TemporaryRoot root;
    installScript(root, first + "\nread line < \"$ORVANE_ROOT/pipe\"\n");
    ASSERT_EQ(::mkfifo(root.at("/pipe").c_str(), 0600), 0);
    const int task = start();
    ASSERT_GT(task, 0);
    EXPECT_EQ(FindTaskByAppName(kPath), task) << first;
    end(task);
    EXPECT_LE(FindTaskByAppName(kPath), 0) << first;
    started_.clear();
  }
}

TEST_F(TaskTest, DoesNotTakeAReaderOfAScriptForTheScript) {
  installScript(root_, "#!/bin/sh\n");
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
    ::execlp("tail", "tail", root_.at(kPath).c_str(), "-f", nullptr);
    ::_exit(127);
  }
  const std::string process = "/proc/" + std::to_string(child) + "/exe";
  ASSERT_TRUE(waitUntil([&] {
    std::error_code ignored;
    return std::filesystem::read_symlink(process, ignored).filename() == "tail";
  }));
  EXPECT_LE(FindTaskByAppName(kPath), 0);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}
