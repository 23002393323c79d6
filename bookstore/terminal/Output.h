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
  // Prints for people, with secrets masked, until changed. Uses the streams of `terminal` while the
  // object lives.
  explicit Output(const Terminal& terminal);

  void setJson(bool isJson) { isJson_ = isJson; }
  void setShowSecrets(bool showsSecrets) { showsSecrets_ = showsSecrets; }

  // True if the output is for programs: one call of printJson() instead of print().
  bool isJson() const { return isJson_; }

  const Terminal& terminal() const { return terminal_; }

  void print(const Table& table);
  void print(const std::string& text);

  // Prints the object `document` with its schema number added. The output is ASCII: other
  // characters are escaped.
  void printJson(Json::Value document);

  // Prints one line for people, with control characters escaped, or `document` for programs.
  void printResult(const std::string& line, const Json::Value& document);

  // Prints a table for people, or `document` for programs.
  void printResult(const Table& table, const Json::Value& document);

  // One line that does not change the exit code.
  void note(const std::string& text);
  // One line: what went wrong and what to do.
  void fail(const Failure& failure);

  // The secret, or a mask; empty if the secret is empty.
  std::string secret(const std::string& value) const;
  // The text with its secrets masked, unless they are to be shown.
  std::string withoutSecrets(const std::string& text) const;

  // Writes out what was printed. False if any of it could not be written.
  bool flush();

 private:
  void printMessage(const std::string& text);

  Terminal terminal_;
  bool isJson_ = false;
  bool showsSecrets_ = false;
};

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_OUTPUT_H_
