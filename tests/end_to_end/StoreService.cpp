#include "tests/end_to_end/StoreService.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace end_to_end {

namespace {

// The value of one "name=value" line.
std::string field(const std::string& lines, const std::string& name) {
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    if (line.compare(0, name.size() + 1, name + "=") == 0) {
      return line.substr(name.size() + 1);
    }
  }
  throw std::runtime_error("no " + name + " in: " + lines);
}

// In the child between fork and exec.
[[noreturn]] void become(const std::vector<std::string>& command, int input, int output) {
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  ::execvp(arguments[0], arguments.data());
  ::_exit(127);
}

std::string readAll(int descriptor) {
  std::string text;
  char piece[4096];
  for (ssize_t length = 0; (length = ::read(descriptor, piece, sizeof(piece))) > 0;) {
    text.append(piece, static_cast<std::size_t>(length));
  }
  ::close(descriptor);
  return text;
}

// A descriptor from which `text` is read.
int readable(const std::string& text) {
  char name[] = "/tmp/end-to-end-input-XXXXXX";
  const int descriptor = ::mkostemp(name, O_CLOEXEC);
  ::unlink(name);
  if (descriptor < 0 ||
      ::write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("cannot write a temporary file");
  }
  ::lseek(descriptor, 0, SEEK_SET);
  return descriptor;
}

}  // namespace

std::string outputOf(const std::vector<std::string>& command, int* status,
                     const std::string& input) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::runtime_error("pipe failed");
  }
  const int inputEnd = readable(input);
  const pid_t child = ::fork();
  if (child == 0) {
    become(command, inputEnd, ends[1]);
  }
  ::close(inputEnd);
  ::close(ends[1]);
  const std::string output = readAll(ends[0]);
  int ended = 0;
  ::waitpid(child, &ended, 0);
  const int code = WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended);
  if (status != nullptr) {
    *status = code;
  } else if (code != 0) {
    throw std::runtime_error(command[0] + " ended with " + std::to_string(code) + ": " + output);
  }
  return output;
}

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path().string() + "/end-to-end-XXXXXX") {
  if (::mkdtemp(&path_[0]) == nullptr) {
    throw std::runtime_error("cannot make " + path_);
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::pair<std::string, std::string>> contentOf(const std::string& folder) {
  std::vector<std::pair<std::string, std::string>> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      std::ifstream in(entry.path(), std::ios::binary);
      std::ostringstream content;
      content << in.rdbuf();
      files.emplace_back(entry.path().string().substr(folder.size()), content.str());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

StoreService::StoreService() {
  start();
}

StoreService::~StoreService() {
  try {
    stop();
  } catch (const std::exception&) {
    // Nothing is left to do for a test that ends; the service is bound to its folder.
  }
}

void StoreService::start() {
  const std::string lines = outputOf({STORE_SCRIPT, "start", "--state", folder() + "/state"});
  port_ = field(lines, "port");
  control_ = field(lines, "control");
  authority_ = field(lines, "ca");
}

void StoreService::stop() {
  outputOf({STORE_SCRIPT, "stop", "--state", folder() + "/state"});
}

std::string StoreService::connectTo() const {
  return "::127.0.0.1:" + port_;
}

std::string StoreService::control(const std::string& method, const std::string& path,
                                  const std::string& body) {
  return outputOf({"curl", "--silent", "--show-error", "--fail-with-body", "--max-time", "20",
                   "--request", method, "--data-binary", "@-", control_ + path},
                  nullptr, body);
}

void StoreService::addFault(const std::string& fault) {
  control("POST", "/faults", fault);
}

void StoreService::change(const std::string& settings) {
  control("PATCH", "/settings", settings);
}

void StoreService::reset(const std::string& line) {
  control("DELETE", "/faults");
  control("DELETE", "/requests");
  change("{\"line\":\"" + line + "\",\"cacheIdHeader\":\"X-Magento-Cache-Id\"}");
}

Json::Value StoreService::requests() {
  Json::Value value;
  std::istringstream(control("GET", "/requests")) >> value;
  return value;
}

}  // namespace end_to_end
