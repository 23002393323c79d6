// Shows that the program is at work while a request keeps its thread waiting.

#ifndef BOOKSTORE_TERMINAL_SPINNER_H_
#define BOOKSTORE_TERMINAL_SPINNER_H_

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

#include "bookstore/terminal/Terminal.h"

namespace bookstore {

// Turns, on a thread of its own, from construction to destruction, which takes it off the line. In
// between nobody else writes to the terminal's streams.
class Spinner {
 public:
  // Writes to `terminal.err`, which must outlive the object; nothing at all where that is no
  // terminal, or one that cannot move its cursor. `text` stands beside the spinner.
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
