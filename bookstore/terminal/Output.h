// What the program prints: data to standard output, messages to standard error. Used by one thread.

#ifndef BOOKSTORE_TERMINAL_OUTPUT_H_
#define BOOKSTORE_TERMINAL_OUTPUT_H_

#include <string>

#include <json/forwards.h>

#include "bookstore/Failure.h"
#include "bookstore/terminal/Table.h"
#include "bookstore/terminal/Terminal.h"

namespace bookstore {

class Output {
 public:
  // For people and with secrets masked, until told otherwise. Reads the streams of `terminal` as
  // long as the object lives.
  explicit Output(const Terminal& terminal);

  void setJson(bool isJson) { isJson_ = isJson; }
  void setShowSecrets(bool showsSecrets) { showsSecrets_ = showsSecrets; }

  // True when data is for programs: one call of printJson() instead of print().
  bool isJson() const { return isJson_; }

  const Terminal& terminal() const { return terminal_; }

  void print(const Table& table);
  void print(const std::string& text);

  // Prints the object `document`, to which it adds the number of its schema. The document is plain
  // ASCII: other characters are escaped.
  void printJson(Json::Value document);

  // Prints one line for people, whose control characters become escapes, or `document` for
  // programs.
  void printResult(const std::string& line, const Json::Value& document);

  // One line that does not change the exit code.
  void note(const std::string& text);
  // One line: what failed and what to try.
  void fail(const Failure& failure);

  // The secret itself, or a mask; an empty one stays empty.
  std::string secret(const std::string& value) const;
  // The text with the secrets in it masked, unless they are to be shown.
  std::string withoutSecrets(const std::string& text) const;

  // Hands on what was printed. False when any of the data did not get out.
  bool flush();

 private:
  void printMessage(const std::string& text);

  Terminal terminal_;
  bool isJson_ = false;
  bool showsSecrets_ = false;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_OUTPUT_H_
