// graphql-platform-check: see docs/graphql-platform-check.md.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "platform_check/Check.h"
#include "platform_check/Child.h"
#include "platform_check/Options.h"
#include "platform_check/Report.h"
#include "platform_check/Task.h"

namespace {

using platform_check::Check;
using platform_check::CheckResult;
using platform_check::Child;
using platform_check::Misuse;
using platform_check::Options;
using platform_check::Outcome;
using platform_check::Settings;

enum ExitStatus { kNoneFailed = 0, kSomeFailed = 1, kWrongUse = 2 };

// The folder of the run; it and what is in it go with the object.
class RunFolder {
 public:
  explicit RunFolder(std::string path) : path_(std::move(path)) {
    std::error_code error;
    hadParent_ = std::filesystem::exists(parent(), error);
    std::filesystem::create_directories(path_, error);
    if (!std::filesystem::is_directory(path_)) {
      throw Misuse("cannot create the folder " + path_ + ": " + error.message() +
                   "; set --root and --folder to a place that can be written");
    }
  }
  ~RunFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
    if (!hadParent_) {
      std::filesystem::remove(parent(), ignored);
    }
  }
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

 private:
  std::filesystem::path parent() const { return std::filesystem::path(path_).parent_path(); }

  const std::string path_;
  bool hadParent_;
};

CheckResult runCheck(const Check& check, const Settings& settings) {
  const auto start = std::chrono::steady_clock::now();
  Child child([&] { check.run(settings); }, true);
  const auto result = child.wait(settings.timeoutSeconds);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  return {check, result, taken.count()};
}

std::vector<Check> chosenChecks(const Options& options) {
  std::vector<Check> chosen;
  for (const Check& check : platform_check::allChecks()) {
    if (options.only.empty() || options.only.count(check.group) != 0 ||
        options.only.count(check.fullName()) != 0) {
      chosen.push_back(check);
    }
  }
  return chosen;
}

std::vector<CheckResult> runChecks(const std::vector<Check>& checks, const Settings& settings) {
  const RunFolder folder(settings.root + settings.folder);
  std::vector<CheckResult> results;
  platform_check::writeTapStart(std::cout, checks.size());
  for (const Check& check : checks) {
    results.push_back(runCheck(check, settings));
    platform_check::writeTapResult(std::cout, results.size(), results.back());
  }
  platform_check::writeTapEnd(std::cout, results);
  return results;
}

int run(const Options& options) {
  if (options.showsHelp) {
    std::cout << platform_check::helpText();
    return kNoneFailed;
  }
  const std::vector<Check> checks = chosenChecks(options);
  if (options.showsList) {
    for (const Check& check : checks) {
      std::cout << check.fullName() << "\n";
    }
    return kNoneFailed;
  }
  std::ofstream junit;
  if (!options.junitFile.empty()) {
    junit.open(options.junitFile);
    if (!junit) {
      throw Misuse("cannot write " + options.junitFile + "; set --junit to another file");
    }
  }
  const std::vector<CheckResult> results = runChecks(checks, options.settings);
  if (junit.is_open()) {
    platform_check::writeJunit(junit, results);
  }
  for (const CheckResult& each : results) {
    if (each.result.outcome == Outcome::Failed) {
      return kSomeFailed;
    }
  }
  return kNoneFailed;
}

}  // namespace

int main(int count, char** arguments) {
  if (platform_check::isTask(count, arguments)) {
    return platform_check::runTask(count, arguments);
  }
  try {
    return run(platform_check::readOptions({arguments + 1, arguments + count}));
  } catch (const std::exception& exception) {
    std::cerr << "graphql-platform-check: " << exception.what() << "\n";
    return kWrongUse;
  }
}
