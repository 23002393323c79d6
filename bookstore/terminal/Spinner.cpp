#include "bookstore/terminal/Spinner.h"

#include <chrono>

namespace bookstore {

namespace {

constexpr char kShapes[] = {'|', '/', '-', '\\'};
constexpr std::chrono::milliseconds kStep(120);

}  // namespace

Spinner::Spinner(const Terminal& terminal, const std::string& text)
    : err_(terminal.err), text_(text) {
  if (terminal.errIsTerminal && movesCursor()) {
    draw(0);
    thread_ = std::thread(&Spinner::turn, this);
  }
}

Spinner::~Spinner() {
  if (!thread_.joinable()) {
    return;
  }
  {
    const std::lock_guard<std::mutex> guard(mutex_);
    isEnding_ = true;
  }
  ending_.notify_one();
  thread_.join();
  err_ << "\033[K" << std::flush;
}

void Spinner::say(const std::string& text) {
  if (!thread_.joinable()) {
    return;
  }
  const std::lock_guard<std::mutex> guard(mutex_);
  text_ = text;
  err_ << "\033[K";
  draw(step_);
}

void Spinner::turn() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!ending_.wait_for(lock, kStep, [this] { return isEnding_; })) {
    draw(++step_);
  }
}

// Moves the cursor back to the first column, so that a log line overwrites the spinner.
void Spinner::draw(std::size_t step) {
  err_ << kShapes[step % sizeof(kShapes)] << ' ' << text_ << '\r' << std::flush;
}

}  // namespace bookstore
