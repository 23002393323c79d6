// A platform implementation for unit tests: records every call of the library in order, plays the
// responses that the test prepared, and fails or throws at any single call. There is one per
// process, used by one thread.

#ifndef PLATFORM_FAKE_FAKEPLATFORM_H_
#define PLATFORM_FAKE_FAKEPLATFORM_H_

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fake {

// Thrown by the calls that throwAt() selects.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One request that the runner received.
struct Request {
  std::string method;
  std::string url;
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;
  // The time limit; -1 for the overload without one.
  long limit = -1;

  // The value of a header; empty if the request does not have the header.
  std::string header(const std::string& name) const;
};

class Http {
 public:
  // The next exchange succeeds with this response. Responses are played in the order given; without
  // a response, an exchange fails with 7.
  void answer(long status, const std::string& body,
              const std::unordered_map<std::string, std::string>& headers = {});

  // The next exchange fails: the runner returns `err`, with the data that had arrived.
  void failTransfer(int err, long status = 0, const std::string& body = "");

  // If set, called with the curl command of each request, before the request is recorded.
  std::function<void(const std::string& curlCommand)> beforeSending;

  std::vector<Request> requests;

  struct Answer {
    int err;
    long status;
    std::string body;
    std::unordered_map<std::string, std::string> headers;
  };
  std::deque<Answer> answers;
};

class Config {
 public:
  // Maps device path to key to clear text.
  std::map<std::string, std::map<std::string, std::string>> files;

  // Maps device path to the keys whose values are secrets. A secret that is read as a text, and a
  // text that is read as a secret, reads as kWrongKind.
  std::map<std::string, std::set<std::string>> secretKeys;

  void setText(const std::string& path, const std::string& key, const std::string& value);
  void setSecret(const std::string& path, const std::string& key, const std::string& value);
  bool isSecret(const std::string& path, const std::string& key) const;
};

extern const char kWrongKind[];

// One formatted line of the log.
struct LogLine {
  int level;
  std::string file;
  int line;
  std::string function;
  std::string format;
  std::string text;
};

struct Device {
  const char* model = "QX417";
  const char* softwareVersion = "3.2.105";
  const char* serialNumber = "SN0001";
  int screenWidth = 1200;
  int screenHeight = 1600;
  int storeVersion = 3;
};

struct Task {
  std::string path;
  std::vector<std::string> arguments;
  std::string appName;
  std::string name;
  const void* reserved;
  unsigned int flags;
};

class Tasks {
 public:
  // The result of FindTaskByAppName.
  int running = 0;
  std::vector<Task> started;
  // If set, called when a task is started.
  std::function<void()> onStart;
};

class Platform {
 public:
  Http http;
  Config config;
  Device device;
  Tasks tasks;
  std::vector<LogLine> log;

  // Every call in order: its name, a blank, and its arguments.
  std::vector<std::string> calls;

  // The calls whose names are in `names`, in order.
  std::vector<std::string> callsOf(const std::set<std::string>& names) const;

  // The texts of the log lines of this level.
  std::vector<std::string> logTexts(int level) const;

  // The `nth` call of this name from now throws Failure, or fails in its own way: an exchange with
  // 7, a text with a null pointer, a task with -1, a save by not saving.
  void throwAt(const std::string& name, int nth = 1);
  void failAt(const std::string& name, int nth = 1);

  // For the platform functions: records one call. Throws, or returns true if the call must fail.
  bool record(const std::string& name, const std::string& detail = std::string());

 private:
  struct Trap {
    std::string name;
    int countdown;
    bool throws;
  };
  std::vector<Trap> traps_;
};

// The platform of this process.
Platform& platform();

// Forgets everything that was recorded and prepared.
void reset();

}  // namespace fake

#endif  // PLATFORM_FAKE_FAKEPLATFORM_H_
