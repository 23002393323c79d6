// Rows of text with aligned columns. Used by one thread.

#ifndef BOOKSTORE_TERMINAL_TABLE_H_
#define BOOKSTORE_TERMINAL_TABLE_H_

#include <cstddef>
#include <string>
#include <vector>

namespace bookstore {

// The columns that UTF-8 text takes on a terminal: two for wide characters, none for combining
// ones. A byte that is not UTF-8 counts as one.
std::size_t displayWidth(const std::string& text);

class Table {
 public:
  // A table with this line of titles; without titles when there are none.
  explicit Table(const std::vector<std::string>& titles = {});

  // Copies the cells. What would do something to a terminal becomes visible as an escape: the texts
  // come from the network.
  void addRow(const std::vector<std::string>& cells);

  // The lines, two blanks between columns and none at the end; the titles in bold where `isBold`.
  std::string text(bool isBold) const;

 private:
  std::vector<std::size_t> columnWidths() const;

  bool hasTitles_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_TABLE_H_
