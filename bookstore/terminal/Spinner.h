// Shows that the program is busy while a request blocks its thread.

#ifndef BOOKSTORE_TERMINAL_SPINNER_H_
#define BOOKSTORE_TERMINAL_SPINNER_H_

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

#include "bookstore/terminal/Terminal.h"

namespace bookstore {

// Turns, on its own thread, from construction to destruction, which clears its line. While it
// turns, only the library's log may write to the terminal's streams.
class Spinner {
 public:
  // Writes `text` beside the spinner to `terminal.err`, which must outlive the object. Writes
  // nothing if that is not a terminal, or a terminal that cannot move its cursor.
  Spinner(const Terminal& terminal, const std::string& text);
  ~Spinner();

  Spinner(const Spinner&) = delete;
  Spinner& operator=(const Spinner&) = delete;

  // Replaces the text beside the spinner.
  void say(const std::string& text);

 private:
  void turn();
  void draw(std::size_t step);

  std::ostream& err_;
  std::string text_;
  std::mutex mutex_;
  std::condition_variable ending_;
  bool isEnding_ = false;
  std::size_t step_ = 0;
  std::thread thread_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_SPINNER_H_
