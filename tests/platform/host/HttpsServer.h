// https-server.mjs as a child process, with a certificate of its own. Used by one thread.

#ifndef TESTS_PLATFORM_HOST_HTTPSSERVER_H_
#define TESTS_PLATFORM_HOST_HTTPSSERVER_H_

#include <sys/types.h>

#include <string>

namespace support {

// Runs `command` in a shell. Returns what it wrote to standard output; throws std::runtime_error
// when it fails.
std::string runShell(const std::string& command);

class HttpsServer {
 public:
  // Makes a folder and a certificate for kHost, starts the server and waits until it listens.
  // Throws std::runtime_error when that fails.
  HttpsServer();

  // Ends the server and removes the folder.
  ~HttpsServer();

  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;

  static const char kHost[];

  // A folder for the test's own files.
  const std::string& folder() const { return folder_; }
  std::string certificateFile() const { return folder_ + "/certificate.pem"; }
  // The server's public key as ORVANE_PINNED_KEY takes it.
  std::string publicKeyPin() const;

  // The ports on 127.0.0.1.
  int http1Port() const { return http1Port_; }
  int http2Port() const { return http2Port_; }
  int mutePort() const { return mutePort_; }  // accepts, and says nothing

 private:
  void makeCertificate();
  void start();

  std::string folder_;
  pid_t process_ = -1;
  int http1Port_ = 0;
  int http2Port_ = 0;
  int mutePort_ = 0;
};

}  // namespace support

#endif  // TESTS_PLATFORM_HOST_HTTPSSERVER_H_
