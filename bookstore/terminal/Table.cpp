#include "bookstore/terminal/Table.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include "base/VisibleText.h"

namespace bookstore {

namespace {

// While the object lives, the calling thread reads multibyte characters as UTF-8, whatever the
// locale of the process: all texts are UTF-8.
class Utf8Characters {
 public:
  Utf8Characters()
      : characters_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)),
        previous_(::uselocale(characters_)) {}

  ~Utf8Characters() {
    ::uselocale(previous_);
    if (characters_ != nullptr) {
      ::freelocale(characters_);
    }
  }

  Utf8Characters(const Utf8Characters&) = delete;
  Utf8Characters& operator=(const Utf8Characters&) = delete;

 private:
  locale_t characters_;
  locale_t previous_;
};

std::string withoutBlanksAtEnd(const std::string& line) {
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

}  // namespace

std::size_t displayWidth(const std::string& text) {
  const Utf8Characters utf8Characters;
  std::size_t width = 0;
  mbstate_t state = {};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t character = 0;
    const std::size_t length = ::mbrtowc(&character, &text[at], text.size() - at, &state);
    if (length == 0 || length > text.size() - at) {  // NUL, or (size_t)-1 and -2 for no character
      state = mbstate_t();
      ++width;
      ++at;
      continue;
    }
    width += static_cast<std::size_t>(std::max(0, ::wcwidth(character)));
    at += length;
  }
  return width;
}

Table::Table(const std::vector<std::string>& titles) : hasTitles_(!titles.empty()) {
  if (hasTitles_) {
    addRow(titles);
  }
}

void Table::addRow(const std::vector<std::string>& cells) {
  std::vector<std::string> row;
  row.reserve(cells.size());
  for (const std::string& cell : cells) {
    row.push_back(base::visibleText(cell));
  }
  rows_.push_back(std::move(row));
}

std::string Table::text(bool isBold) const {
  const std::vector<std::size_t> widths = columnWidths();
  std::string text;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    std::string line;
    for (std::size_t column = 0; column < rows_[row].size(); ++column) {
      const std::string& cell = rows_[row][column];
      line += cell + std::string(widths[column] - displayWidth(cell) + 2, ' ');
    }
    line = withoutBlanksAtEnd(line);
    const bool isTitle = hasTitles_ && row == 0;
    text += isTitle && isBold ? "\033[1m" + line + "\033[0m\n" : line + "\n";
  }
  return text;
}

std::vector<std::size_t> Table::columnWidths() const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], displayWidth(row[column]));
    }
  }
  return widths;
}

}  // namespace bookstore
