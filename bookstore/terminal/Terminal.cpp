#include "bookstore/terminal/Terminal.h"

#include <cstdlib>
#include <string>

namespace bookstore {

namespace {

std::string environmentText(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

bool movesCursor() {
  const std::string kind = environmentText("TERM");
  return !kind.empty() && kind != "dumb";
}

bool wantsColor() {
  return movesCursor() && environmentText("NO_COLOR").empty();
}

}  // namespace bookstore
