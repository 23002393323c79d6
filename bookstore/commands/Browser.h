// A browser of the Chromium family, which runs as a child process and is controlled over a pipe.
// For the main thread of a process without other threads.

#ifndef BOOKSTORE_COMMANDS_BROWSER_H_
#define BOOKSTORE_COMMANDS_BROWSER_H_

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include <json/forwards.h>

#include "base/BlockedSignals.h"
#include "base/WholeFile.h"
#include "bookstore/Failure.h"

namespace bookstore {

// The path of the first such browser in PATH; empty when there is none.
std::string findBrowser();

// Runs from construction until the person closes it, or until the object is destroyed. Signals that
// end this process wait until then: the profile contains secrets and must always be removed.
class Browser {
 public:
  // Starts `program` with an empty profile and `options`. Throws Failure when that fails.
  Browser(const std::string& program, const std::vector<std::string>& options);
  ~Browser();

  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

  // Calls a method of the browser's DevTools protocol. Throws Failure when the browser refuses,
  // ends, or does not respond in 30 seconds.
  void call(const std::string& method, const Json::Value& parameters);

  // Returns when the browser has ended, or when a signal asks this process to end.
  void waitUntilClosed();

 private:
  // A new folder, which is removed with the object.
  class Profile {
   public:
    Profile();
    ~Profile();
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    const std::string& path() const { return path_; }

   private:
    std::string path_;
  };

  void start(const std::vector<std::string>& options);
  void send(const std::string& message);
  std::string receive();
  void waitForResponse();
  Failure ended() const;

  // The order matters: the signals take effect last, after the profile has gone.
  const base::BlockedSignals signals_;
  const Profile profile_;
  const std::string program_;
  std::optional<base::Descriptor> commands_;
  std::optional<base::Descriptor> responses_;
  std::optional<base::Descriptor> process_;
  pid_t pid_ = -1;
  int lastId_ = 0;
  std::string received_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_BROWSER_H_
