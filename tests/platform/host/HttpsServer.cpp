#include "tests/platform/host/HttpsServer.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace support {

namespace {

std::string makeFolder() {
  std::string path = "/tmp/https-server.XXXXXX";
  if (::mkdtemp(&path[0]) == nullptr) {
    throw std::runtime_error("cannot make a folder in /tmp");
  }
  return path;
}

// Starts `arguments` with a pipe at both ends of its standard streams; the child's standard input
// lasts as long as this process.
pid_t spawn(std::array<const char*, 5> arguments, int* output) {
  int input[2];
  int result[2];
  pid_t process = -1;
  if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(result, O_CLOEXEC) != 0) {
    throw std::runtime_error("cannot make a pipe");
  }
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, result[1], STDOUT_FILENO);
  const int failure = ::posix_spawnp(&process, arguments[0], &actions, nullptr,
                                     const_cast<char**>(arguments.data()), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(input[0]);
  ::close(result[1]);
  *output = result[0];
  if (failure != 0) {
    throw std::runtime_error(std::string("cannot start ") + arguments[0]);
  }
  return process;
}

}  // namespace

const char HttpsServer::kHost[] = "store.example";

std::string runShell(const std::string& command) {
  std::FILE* pipe = ::popen(command.c_str(), "r");  // NOLINT(cert-env33-c)
  std::string output;
  std::array<char, 4096> piece;
  while (const std::size_t length = std::fread(piece.data(), 1, piece.size(), pipe)) {
    output.append(piece.data(), length);
  }
  if (::pclose(pipe) != 0) {
    throw std::runtime_error("failed: " + command);
  }
  return output;
}

HttpsServer::HttpsServer() : folder_(makeFolder()) {
  makeCertificate();
  start();
}

HttpsServer::~HttpsServer() {
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void HttpsServer::makeCertificate() {
  runShell("cd " + folder_ +
           " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -noenc -days 2"
           " -subj /CN=test -addext subjectAltName=DNS:" +
           kHost + " -out certificate.pem -keyout key.pem 2>/dev/null");
}

void HttpsServer::start() {
  int output = -1;
  const std::string certificate = certificateFile();
  const std::string key = folder_ + "/key.pem";
  process_ =
      spawn({"node", HTTPS_SERVER_SCRIPT, certificate.c_str(), key.c_str(), nullptr}, &output);
  std::FILE* lines = ::fdopen(output, "r");
  const int found = std::fscanf(lines, "{\"http1\":%d,\"http2\":%d,\"mute\":%d}",  // NOLINT
                                &http1Port_, &http2Port_, &mutePort_);
  std::fclose(lines);
  if (found != 3) {
    throw std::runtime_error("the server did not name its ports");
  }
}

std::string HttpsServer::publicKeyPin() const {
  const std::string hash = runShell("openssl x509 -in " + certificateFile() +
                                    " -pubkey -noout | openssl pkey -pubin -outform der |"
                                    " openssl dgst -sha256 -binary | openssl base64");
  return "sha256//" + hash.substr(0, hash.find('\n'));
}

}  // namespace support
