// The local store service as a process of its own, for tests. Used by one thread.

#ifndef TESTS_SUPPORT_STORESERVICE_H_
#define TESTS_SUPPORT_STORESERVICE_H_

#include <string>

#include <json/json.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

// Starts a service with a state folder of its own, and ends it and removes the folder when
// destroyed. The service ends with this process, too, however that ends. Throws std::runtime_error
// with the service's words when it does not start.
class StoreService {
 public:
  StoreService();
  ~StoreService();

  StoreService(const StoreService&) = delete;
  StoreService& operator=(const StoreService&) = delete;

  // Ends the process and keeps the state; start() continues with that state on another port.
  void stop();
  void start();

  // The path of the CA certificate.
  const std::string& authority() const { return authority_; }

  // The value for ORVANE_CONNECT_TO.
  std::string connectTo() const;

  // The state folder of the service.
  const std::string& folder() const { return folder_.path(); }

  // Adds a fault, given as JSON; the service's README lists the members.
  void addFault(const std::string& fault);

  // Changes settings, given as JSON.
  void change(const std::string& settings);

  // Clears all faults, forgets the requests and plays the given line of the platform.
  void reset(const std::string& line = "new");

  // The requests that arrived since the last reset, oldest first.
  Json::Value requests();

  // How many of them asked for this operation of GraphQL.
  int requestsOf(const std::string& operation);

 private:
  std::string control(const std::string& method, const std::string& path,
                      const std::string& body = std::string());

  const TemporaryFolder folder_;
  const Lifeline lifeline_;
  std::string port_;
  std::string control_;
  std::string authority_;
};

}  // namespace support

#endif  // TESTS_SUPPORT_STORESERVICE_H_
