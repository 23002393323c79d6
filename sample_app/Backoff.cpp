#include "sample_app/Backoff.h"

#include <algorithm>

namespace sample_app {

namespace {

constexpr int kLongestInFirsts = 60;

}  // namespace

Backoff::Backoff(std::chrono::milliseconds first) : first_(first), next_(first) {}

std::chrono::milliseconds Backoff::next() {
  const std::chrono::milliseconds due = next_;
  next_ = std::min(2 * next_, kLongestInFirsts * first_);
  return due;
}

void Backoff::reset() {
  next_ = first_;
}

}  // namespace sample_app
