// Plain TCP for the HTTP checks: the control port of the store service, and a server that nobody
// should talk to. Used by one thread.

#ifndef PLATFORM_CHECK_NETWORK_H_
#define PLATFORM_CHECK_NETWORK_H_

#include <atomic>
#include <string>
#include <thread>

namespace platform_check {

// True when a TCP connection to the host and port of `url` succeeds.
bool isReachable(const std::string& url);

// The store service's control port (store/README.md): arranges faults and reads requests.
class ControlPort {
 public:
  // `url` such as "http://127.0.0.1:8480". Clears faults and requests. Throws Skip when nothing
  // listens there.
  explicit ControlPort(const std::string& url);

  // Clears the faults.
  ~ControlPort();

  ControlPort(const ControlPort&) = delete;
  ControlPort& operator=(const ControlPort&) = delete;

  // Makes the next response broken, as the members of the JSON object `fault` say.
  void addFault(const std::string& fault) const;

  // The requests since the object was made, as the JSON of the control port.
  std::string requests() const;

 private:
  std::string exchange(const std::string& method, const std::string& path,
                       const std::string& body) const;

  const std::string url_;
};

// A server without TLS on a port of 127.0.0.1. It answers every connection with an empty response.
class PlainServer {
 public:
  PlainServer();
  ~PlainServer();

  PlainServer(const PlainServer&) = delete;
  PlainServer& operator=(const PlainServer&) = delete;

  int port() const { return port_; }

 private:
  void serve() const;

  int listener_;
  int port_;
  std::atomic<bool> isEnding_{false};
  std::thread thread_;
};

// A port of 127.0.0.1 to which no connection succeeds while the object lives.
class ClosedPort {
 public:
  ClosedPort();
  ~ClosedPort();

  ClosedPort(const ClosedPort&) = delete;
  ClosedPort& operator=(const ClosedPort&) = delete;

  int port() const { return port_; }

 private:
  int socket_;
  int port_;
};

}  // namespace platform_check

#endif  // PLATFORM_CHECK_NETWORK_H_
