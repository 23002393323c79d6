// https-server.mjs as a child process, with a new certificate. Used by one thread.

#ifndef TESTS_SUPPORT_HTTPSSERVER_H_
#define TESTS_SUPPORT_HTTPSSERVER_H_

#include <sys/types.h>

#include <string>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

class HttpsServer {
 public:
  // Makes a folder and a certificate for kHost, starts the server and waits until it listens. The
  // server also ends when this process does.
  // Throws std::runtime_error when that fails.
  HttpsServer();

  // Ends the server and removes the folder.
  ~HttpsServer();

  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;

  static const char kHost[];

  // A folder for the test's own files.
  const std::string& folder() const { return folder_.path(); }
  std::string certificateFile() const { return folder() + "/certificate.pem"; }
  // The server's public key as ORVANE_PINNED_KEY takes it.
  std::string publicKeyPin() const;

  // The ports on 127.0.0.1.
  int http1Port() const { return http1Port_; }
  int http2Port() const { return http2Port_; }
  int mutePort() const { return mutePort_; }  // accepts connections, and sends nothing

 private:
  void makeCertificate();
  void start();

  const TemporaryFolder folder_;
  const Lifeline lifeline_;
  pid_t process_ = -1;
  int http1Port_ = 0;
  int http2Port_ = 0;
  int mutePort_ = 0;
};

}  // namespace support

#endif  // TESTS_SUPPORT_HTTPSSERVER_H_
