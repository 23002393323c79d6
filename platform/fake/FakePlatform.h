// A platform for unit tests: records every call of the library in order, plays what the test
// arranged, and fails or throws at any single call. There is one per process, used by one thread.

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

// What an arranged call throws.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One request as the runner was given it.
struct Request {
  std::string method;
  std::string url;
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;
  // The time limit; -1 for the overload without one.
  long limit = -1;

  // The value of a header; empty when the request has none of this name.
  std::string header(const std::string& name) const;
};

class Http {
 public:
  // The next transfer succeeds with this answer. Answers are played in the order given; without
  // one, a transfer fails with 7.
  void answer(long status, const std::string& body,
              const std::unordered_map<std::string, std::string>& headers = {});

  // The next transfer fails: the runner returns `err`, with whatever had arrived.
  void failTransfer(int err, long status = 0, const std::string& body = "");

  // Called, where the test sets it, with the curl command of each request before that is recorded.
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
  // Device path to key to clear text.
  std::map<std::string, std::map<std::string, std::string>> files;

  // Device path to the keys whose values are secrets. A secret that is read as a text, and the
  // other way round, reads as kWrongKind.
  std::map<std::string, std::set<std::string>> secretKeys;

  void setText(const std::string& path, const std::string& key, const std::string& value);
  void setSecret(const std::string& path, const std::string& key, const std::string& value);
  bool isSecret(const std::string& path, const std::string& key) const;
};

extern const char kWrongKind[];

// One line of the log, with its values filled in.
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
  // What FindTaskByAppName answers.
  int running = 0;
  std::vector<Task> started;
  // Called when a task is started, if it is set.
  std::function<void()> onStart;
};

class Platform {
 public:
  Http http;
  Config config;
  Device device;
  Tasks tasks;
  std::vector<LogLine> log;

  // Every call in order: its name, a blank, and what it was given.
  std::vector<std::string> calls;

  // The calls whose names are in `names`, in order.
  std::vector<std::string> callsOf(const std::set<std::string>& names) const;

  // The texts of the log lines of this level.
  std::vector<std::string> logTexts(int level) const;

  // The `nth` call from now of this name throws Failure, or fails in its own way: a transfer with
  // 7, a text as a null pointer, a task with -1, a save by not saving.
  void throwAt(const std::string& name, int nth = 1);
  void failAt(const std::string& name, int nth = 1);

  // Called by the definitions: records one call; throws or returns true (fail) as arranged.
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

// Forgets everything that was recorded and arranged.
void reset();

}  // namespace fake

#endif  // PLATFORM_FAKE_FAKEPLATFORM_H_
