#include "bookstore/terminal/ProgressBar.h"

#include <algorithm>

#include "base/VisibleText.h"
#include "bookstore/terminal/Table.h"

namespace bookstore {

namespace {

constexpr std::size_t kBarWidth = 20;
constexpr std::size_t kTitleWidth = 40;

// Cuts only between characters: a part of one would not print.
std::string cut(const std::string& text) {
  if (displayWidth(text) <= kTitleWidth) {
    return text;
  }
  std::size_t end = 0;
  for (std::size_t next = 0; displayWidth(text.substr(0, next)) < kTitleWidth;) {
    end = next;
    next += std::max<std::size_t>(1, base::printableLength(text, next));
  }
  return text.substr(0, end) + "…";
}

}  // namespace

std::string progressBar(std::size_t done, std::size_t all, const std::string& title) {
  const std::size_t pieces = std::max(all, done + 1);  // includes the current one
  const std::size_t filled = kBarWidth * done / pieces;
  return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + "] " +
         std::to_string(done + 1) + " of " + std::to_string(pieces) + "  " +
         cut(base::visibleText(title));
}

}  // namespace bookstore
