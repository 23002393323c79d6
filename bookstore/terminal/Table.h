// Rows of text with aligned columns. Used by one thread.

#ifndef BOOKSTORE_TERMINAL_TABLE_H_
#define BOOKSTORE_TERMINAL_TABLE_H_

#include <cstddef>
#include <string>
#include <vector>

namespace bookstore {

// The columns that UTF-8 text takes on a terminal: two for a wide character, none for a combining
// one, and one for a byte that is not UTF-8.
std::size_t displayWidth(const std::string& text);

class Table {
 public:
  // A table with this row of titles; empty for no titles.
  explicit Table(const std::vector<std::string>& titles = {});

  // Copies the cells and escapes control characters: the texts come from the network.
  void addRow(const std::vector<std::string>& cells);

  // The lines, with two spaces between columns and none at the end; the titles in bold if `isBold`.
  std::string text(bool isBold) const;

 private:
  std::vector<std::size_t> columnWidths() const;

  bool hasTitles_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_TABLE_H_
