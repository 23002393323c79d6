// A browser of the Chromium family as a process of its own, steered over a pipe. For the main
// thread, while the process has no other one.

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
// end this process wait so long, so that the profile, which holds secrets, always goes.
class Browser {
 public:
  // Starts `program` with an empty profile and `options`. Throws Failure when that is not possible.
  Browser(const std::string& program, const std::vector<std::string>& options);
  ~Browser();

  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

  // Has the browser perform a method of its DevTools protocol. Throws Failure when it refuses, or
  // ends or keeps silent before it answers.
  void call(const std::string& method, const Json::Value& parameters);

  // Returns when the browser has ended, or a signal asks this process to.
  void waitUntilClosed();

 private:
  // A new folder that goes with the object.
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
  void waitForAnswer();
  Failure ended() const;

  // The order matters: the signals take effect last, after the profile has gone.
  const base::BlockedSignals signals_;
  const Profile profile_;
  const std::string program_;
  std::optional<base::Descriptor> commands_;
  std::optional<base::Descriptor> answers_;
  std::optional<base::Descriptor> process_;
  pid_t pid_ = -1;
  int lastId_ = 0;
  std::string received_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_BROWSER_H_
