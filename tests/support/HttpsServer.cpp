#include "tests/support/HttpsServer.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace support {

const char HttpsServer::kHost[] = "store.example";

HttpsServer::HttpsServer() {
  makeCertificate();
  start();
}

HttpsServer::~HttpsServer() {
  ::kill(process_, SIGTERM);
  codeOf(process_);
}

void HttpsServer::makeCertificate() {
  outputOfShell(
      "cd " + folder() +
      " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -noenc -days 2"
      " -subj /CN=test -addext subjectAltName=DNS:" +
      kHost + " -out certificate.pem -keyout key.pem 2>/dev/null");
}

void HttpsServer::start() {
  int output[2];
  if (::pipe2(output, O_CLOEXEC) != 0) {
    throw std::runtime_error("cannot make a pipe");
  }
  process_ = support::start({"node", HTTPS_SERVER_SCRIPT, certificateFile(), folder() + "/key.pem"},
                            lifeline_.childEnd(), output[1]);
  ::close(output[1]);
  std::FILE* lines = ::fdopen(output[0], "r");
  const int found = std::fscanf(lines, "{\"http1\":%d,\"http2\":%d,\"mute\":%d}",  // NOLINT
                                &http1Port_, &http2Port_, &mutePort_);
  std::fclose(lines);
  if (found != 3) {
    throw std::runtime_error("the server did not name its ports");
  }
}

std::string HttpsServer::publicKeyPin() const {
  const std::string hash = outputOfShell("openssl x509 -in " + certificateFile() +
                                         " -pubkey -noout | openssl pkey -pubin -outform der |"
                                         " openssl dgst -sha256 -binary | openssl base64");
  return "sha256//" + hash.substr(0, hash.find('\n'));
}

}  // namespace support
