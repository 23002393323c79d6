#include "bookstore/commands/Browser.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <system_error>
#include <utility>

#include <json/json.h>

#include "base/Settings.h"
#include "bookstore/Failure.h"

namespace bookstore {

namespace {

using Wakeup = base::BlockedSignals::Wakeup;

// The descriptors from which a browser reads commands, and to which it writes responses.
constexpr int kCommandsOfBrowser = 3;
constexpr int kResponsesOfBrowser = 4;
constexpr int kAboveThese = 10;

constexpr std::chrono::seconds kResponseTime(30);
constexpr int kEndMilliseconds = 5000;

Failure systemFailure(const std::string& what) {
  return Failure(kLocalFailure, what + ": " + std::generic_category().message(errno),
                 "Free some memory and disk space, and run the command again");
}

struct Pipe {
  int readEnd;
  int writeEnd;
};

// Replaces the descriptor with one whose number is higher than those of the browser.
int raised(int descriptor) {
  const base::Descriptor low(descriptor);
  return ::fcntl(low.get(), F_DUPFD_CLOEXEC, kAboveThese);
}

Pipe openPipe() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw systemFailure("cannot create a pipe to the browser");
  }
  return {raised(ends[0]), raised(ends[1])};
}

std::string newFolder() {
  std::string path = (std::filesystem::temp_directory_path() / "bookstore-open-XXXXXX").string();
  if (::mkdtemp(&path[0]) == nullptr) {
    throw systemFailure("cannot create a folder for the browser's profile");
  }
  return path;
}

// How the browser is started: with its two pipes, without our standard streams, and with the
// signals as they were.
class SpawnSetting {
 public:
  SpawnSetting(int commands, int responses, const sigset_t& mask) {
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, commands, kCommandsOfBrowser);
    ::posix_spawn_file_actions_adddup2(&actions, responses, kResponsesOfBrowser);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    }
    sigset_t ignoredByUs;
    sigemptyset(&ignoredByUs);
    sigaddset(&ignoredByUs, SIGPIPE);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigmask(&attributes, &mask);
    ::posix_spawnattr_setsigdefault(&attributes, &ignoredByUs);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSetting() {
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
  }
  SpawnSetting(const SpawnSetting&) = delete;
  SpawnSetting& operator=(const SpawnSetting&) = delete;

  posix_spawn_file_actions_t actions = {};
  posix_spawnattr_t attributes = {};
};

// Signals do not end this wait: it is the one that cleans up after them.
bool endsInTime(int process) {
  pollfd source = {process, POLLIN, 0};
  while (::poll(&source, 1, kEndMilliseconds) < 0 && errno == EINTR) {
  }
  return source.revents != 0;
}

std::string compact(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, value);
}

}  // namespace

std::string findBrowser() {
  const std::string path = base::environmentText("PATH");
  for (const char* name : {"chromium", "chromium-browser", "google-chrome"}) {
    std::istringstream folders(path);
    for (std::string folder; std::getline(folders, folder, ':');) {
      std::string program = folder + "/" + name;
      if (!folder.empty() && ::access(program.c_str(), X_OK) == 0) {
        return program;
      }
    }
  }
  return "";
}

Browser::Profile::Profile() : path_(newFolder()) {}

Browser::Profile::~Profile() {
  // Helpers of the browser that end a moment after it may still write into the folder.
  std::error_code failure;
  for (int attempt = 0; attempt < 20; ++attempt) {
    std::filesystem::remove_all(path_, failure);
    if (!failure) {
      return;
    }
    ::usleep(50000);
  }
}

Browser::Browser(const std::string& program, const std::vector<std::string>& options)
    : signals_({SIGINT, SIGTERM, SIGHUP}), program_(program) {
  start(options);
}

Browser::~Browser() {
  if (pid_ < 0) {
    return;
  }
  ::kill(pid_, SIGTERM);
  if (!endsInTime(process_->get())) {
    ::kill(pid_, SIGKILL);
  }
  ::waitpid(pid_, nullptr, 0);
}

void Browser::start(const std::vector<std::string>& options) {
  std::vector<std::string> words = {program_,
                                    "--user-data-dir=" + profile_.path(),
                                    "--no-first-run",
                                    "--no-default-browser-check",
                                    "--disable-background-networking",
                                    "--remote-debugging-pipe"};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);

  const Pipe commands = openPipe();
  commands_.emplace(commands.writeEnd);
  const base::Descriptor commandsEnd(commands.readEnd);
  const Pipe responses = openPipe();
  responses_.emplace(responses.readEnd);
  const base::Descriptor responsesEnd(responses.writeEnd);
  const SpawnSetting setting(commandsEnd.get(), responsesEnd.get(), signals_.before());
  errno = ::posix_spawn(&pid_, program_.c_str(), &setting.actions, &setting.attributes,
                        arguments.data(), environ);
  if (errno != 0) {
    pid_ = -1;
    throw systemFailure("cannot start " + program_);
  }
  process_.emplace(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
}

void Browser::call(const std::string& method, const Json::Value& parameters) {
  Json::Value message;
  message["id"] = ++lastId_;
  message["method"] = method;
  message["params"] = parameters;
  send(compact(message));
  waitForResponse();
}

// Messages end with a NUL, in both directions.
void Browser::send(const std::string& message) {
  for (std::size_t sent = 0; sent <= message.size();) {
    const ssize_t count =
        ::write(commands_->get(), message.c_str() + sent, message.size() + 1 - sent);
    if (count < 0 && errno != EINTR) {
      throw ended();
    }
    sent += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
}

std::string Browser::receive() {
  std::size_t end = 0;
  while ((end = received_.find('\0')) == std::string::npos) {
    std::array<char, 4096> piece = {};
    if (signals_.wait(kResponseTime, responses_->get()) != Wakeup::Readable) {
      throw Failure(kLocalFailure, program_ + " does not respond",
                    "Close the browser, and run the command again");
    }
    const ssize_t count = ::read(responses_->get(), piece.data(), piece.size());
    if (count == 0 || (count < 0 && errno != EINTR)) {
      throw ended();
    }
    received_.append(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  std::string message = received_.substr(0, end);
  received_.erase(0, end + 1);
  return message;
}

// Skips the events that the browser reports.
void Browser::waitForResponse() {
  Json::Value response;
  do {
    std::istringstream(receive()) >> response;
  } while (response["id"] != lastId_);
  if (response.isMember("error")) {
    throw Failure(
        kLocalFailure,
        withServerWords(program_ + " refused a command", response["error"]["message"].asString()),
        "Install a newer browser, or use the output of \"bookstore cookies\"");
  }
}

Failure Browser::ended() const {
  return Failure(kLocalFailure, program_ + " ended before it showed the page",
                 "Run the browser by itself to see why");
}

void Browser::waitUntilClosed() {
  if (signals_.wait(base::BlockedSignals::kForever, process_->get()) == Wakeup::Readable) {
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }
}

}  // namespace bookstore
