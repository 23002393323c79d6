#include "platform_check/Network.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform_check/Check.h"

namespace platform_check {

namespace {

const int kPollMilliseconds = 50;
const int kExchangeSeconds = 20;

struct Address {
  std::string host;
  std::string port;
};

// Of "https://host[:port][/path]" or "http://...".
Address addressOf(const std::string& url) {
  const std::size_t start = url.find("://") + 3;
  const std::string authority = url.substr(start, url.find('/', start) - start);
  const std::size_t colon = authority.rfind(':');
  if (colon == std::string::npos) {
    return {authority, url.compare(0, 5, "https") == 0 ? "443" : "80"};
  }
  return {authority.substr(0, colon), authority.substr(colon + 1)};
}

// The descriptor of a connection; -1 when there is none.
int connectTo(const Address& address) {
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(address.host.c_str(), address.port.c_str(), &hints, &found) != 0) {
    return -1;
  }
  int descriptor = -1;
  for (const addrinfo* each = found; each != nullptr && descriptor < 0; each = each->ai_next) {
    descriptor = ::socket(each->ai_family, each->ai_socktype | SOCK_CLOEXEC, each->ai_protocol);
    if (descriptor >= 0 && ::connect(descriptor, each->ai_addr, each->ai_addrlen) != 0) {
      ::close(descriptor);
      descriptor = -1;
    }
  }
  ::freeaddrinfo(found);
  return descriptor;
}

void sendAll(int descriptor, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count =
        ::send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0) {
      return;  // the missing response says so
    }
    sent += static_cast<std::size_t>(count);
  }
}

std::string receiveAll(int descriptor) {
  const timeval limit = {kExchangeSeconds, 0};
  ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  std::string bytes;
  char piece[4096];
  for (ssize_t length = 0; (length = ::recv(descriptor, piece, sizeof piece, 0)) > 0;) {
    bytes.append(piece, static_cast<std::size_t>(length));
  }
  return bytes;
}

// A socket bound to a free port of 127.0.0.1, and that port.
int boundSocket(int* port) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const general = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor, general, length) != 0 ||
      ::getsockname(descriptor, general, &length) != 0) {
    throw Skip(std::string("no free port on 127.0.0.1: ") + std::strerror(errno));
  }
  *port = ntohs(address.sin_port);
  return descriptor;
}

}  // namespace

bool isReachable(const std::string& url) {
  const int descriptor = connectTo(addressOf(url));
  ::close(descriptor);
  return descriptor >= 0;
}

// --- ControlPort ---------------------------------------------------------------------------------

ControlPort::ControlPort(const std::string& url) : url_(url) {
  if (!isReachable(url_)) {
    throw Skip("nothing listens at " + url_ + "; start the store service and set --control");
  }
  exchange("DELETE", "/faults", "");
  exchange("DELETE", "/requests", "");
}

ControlPort::~ControlPort() {
  try {
    exchange("DELETE", "/faults", "");
  } catch (const Failure&) {  // the next check finds out
  }
}

void ControlPort::addFault(const std::string& fault) const {
  exchange("POST", "/faults", fault);
}

std::string ControlPort::requests() const {
  return exchange("GET", "/requests", "");
}

// Returns the body of the response.
std::string ControlPort::exchange(const std::string& method, const std::string& path,
                                  const std::string& body) const {
  const Address address = addressOf(url_);
  const int descriptor = connectTo(address);
  if (descriptor < 0) {
    throw Failure("the control port " + url_ + " cannot be reached any more");
  }
  // With HTTP/1.0 the body ends with the connection, and has no frame.
  sendAll(descriptor, method + " " + path + " HTTP/1.0\r\nHost: " + address.host +
                          "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  const std::string response = receiveAll(descriptor);
  ::close(descriptor);
  require(response.find(" 200 ") == 8,
          "the control port " + url_ + " refused " + method + " " + path + ": " + quoted(response));
  return response.substr(response.find("\r\n\r\n") + 4);
}

// --- PlainServer and ClosedPort ------------------------------------------------------------------

PlainServer::PlainServer() : listener_(boundSocket(&port_)) {
  require(::listen(listener_, 5) == 0, "cannot listen on 127.0.0.1");
  thread_ = std::thread([this] { serve(); });
}

PlainServer::~PlainServer() {
  isEnding_ = true;
  thread_.join();
  ::close(listener_);
}

void PlainServer::serve() const {
  while (!isEnding_) {
    pollfd ready = {listener_, POLLIN, 0};
    if (::poll(&ready, 1, kPollMilliseconds) <= 0) {
      continue;
    }
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    char request[4096];
    if (::recv(connection, request, sizeof request, 0) > 0) {
      sendAll(connection, "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    }
    ::close(connection);
  }
}

ClosedPort::ClosedPort() : socket_(boundSocket(&port_)) {}

ClosedPort::~ClosedPort() {
  ::close(socket_);
}

}  // namespace platform_check
