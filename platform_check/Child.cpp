#include "platform_check/Child.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <typeinfo>

#include "platform_check/Check.h"

namespace platform_check {

namespace {

// The first byte of a report, before the reason.
const char kPassed = 'P';
const char kFailed = 'F';
const char kSkipped = 'S';

std::string reportOf(const std::function<void()>& function) {
  try {
    function();
    return std::string(1, kPassed);
  } catch (const Skip& skip) {
    return kSkipped + std::string(skip.what());
  } catch (const Failure& failure) {
    return kFailed + std::string(failure.what());
  } catch (const std::exception& exception) {
    return kFailed + std::string("an exception was thrown: ") + exception.what();
  } catch (...) {
    return kFailed + std::string("an exception of unknown type was thrown");
  }
}

// In the new process. Ends without destructors: those of the parent's objects are the parent's.
[[noreturn]] void runAndReport(const std::function<void()>& function, int report) {
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  const std::string text = reportOf(function);
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(report, text.data() + written, text.size() - written);
    if (count < 0 && errno != EINTR) {
      ::_exit(1);
    }
    written += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  ::_exit(0);
}

std::string causeOfEnd(int status) {
  if (WIFSIGNALED(status)) {
    return "the process was ended by signal " + std::to_string(WTERMSIG(status)) + " (" +
           ::strsignal(WTERMSIG(status)) + ")";
  }
  return "the process ended with exit status " + std::to_string(WEXITSTATUS(status)) +
         " before the check was complete";
}

}  // namespace

Child::Child(const std::function<void()>& function, bool leadsGroup)
    : process_(-1), leadsGroup_(leadsGroup) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::runtime_error(std::string("cannot create a pipe: ") + std::strerror(errno));
  }
  process_ = ::fork();
  if (process_ == 0) {
    if (leadsGroup_) {
      ::setpgid(0, 0);
    }
    ::close(ends[0]);
    runAndReport(function, ends[1]);
  }
  ::close(ends[1]);
  report_ = ends[0];
  if (process_ < 0) {
    throw std::runtime_error(std::string("cannot create a process: ") + std::strerror(errno));
  }
  if (leadsGroup_) {
    ::setpgid(process_, process_);  // whichever of the two is first
  }
}

Child::~Child() {
  kill();
  ::close(report_);
}

Result Child::wait(unsigned int seconds) {
  std::string report;
  const bool isInTime = readReport(seconds, &report);
  const int status = end(isInTime ? 0 : SIGKILL);
  if (!isInTime) {
    return {Outcome::Failed, "no result after " + std::to_string(seconds) + " seconds"};
  }
  if (report.empty()) {
    return {Outcome::Failed, causeOfEnd(status)};
  }
  const Outcome outcome = report[0] == kPassed    ? Outcome::Passed
                          : report[0] == kSkipped ? Outcome::Skipped
                                                  : Outcome::Failed;
  return {outcome, report.substr(1)};
}

void Child::kill() {
  end(SIGKILL);
}

// Reads until the process closes its end. False when `seconds` are over before.
bool Child::readReport(unsigned int seconds, std::string* report) const {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  char piece[1024];
  while (true) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    pollfd readable = {report_, POLLIN, 0};
    const int ready = left.count() > 0 ? ::poll(&readable, 1, static_cast<int>(left.count())) : 0;
    if (ready == 0) {
      return false;
    }
    const ssize_t length = ready > 0 ? ::read(report_, piece, sizeof piece) : -1;
    if (length == 0) {
      return true;
    }
    if (length > 0) {
      report->append(piece, static_cast<std::size_t>(length));
    }
  }
}

// Sends `signal`, unless it is 0, and returns the status with which the process ended.
int Child::end(int signal) {
  int status = 0;
  if (process_ > 0) {
    if (signal != 0) {
      ::kill(process_, signal);
    }
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    if (leadsGroup_) {
      ::kill(-process_, SIGKILL);  // what a check left behind
    }
    process_ = -1;
  }
  return status;
}

void inNewProcess(unsigned int seconds, const std::function<void()>& function) {
  const Result result = Child(function).wait(seconds);
  if (result.outcome == Outcome::Skipped) {
    throw Skip(result.reason);
  }
  require(result.outcome == Outcome::Passed, result.reason);
}

}  // namespace platform_check
