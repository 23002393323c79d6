#include "bookstore/terminal/Output.h"

#include <memory>

#include <json/json.h>

#include "base/MaskSecrets.h"
#include "base/VisibleText.h"

namespace bookstore {

namespace {

// Raised when a document changes so that a program written for the old one would misread it.
constexpr int kSchema = 1;

}  // namespace

Output::Output(const Terminal& terminal) : terminal_(terminal) {}

void Output::print(const Table& table) {
  terminal_.out << table.text(terminal_.outIsTerminal && wantsColor());
}

void Output::print(const std::string& text) {
  terminal_.out << text;
}

void Output::printJson(Json::Value document) {
  document["schema"] = kSchema;
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
  writer->write(document, &terminal_.out);
  terminal_.out << '\n';
}

void Output::printResult(const std::string& line, const Json::Value& document) {
  if (isJson_) {
    printJson(document);
  } else {
    print(base::visibleText(line) + "\n");
  }
}

void Output::printResult(const Table& table, const Json::Value& document) {
  if (isJson_) {
    printJson(document);
  } else {
    print(table);
  }
}

void Output::note(const std::string& text) {
  printMessage(text);
}

void Output::fail(const Failure& failure) {
  printMessage(failure.what() + (". " + failure.remedy()) + ".");
}

void Output::printMessage(const std::string& text) {
  const bool isColored = terminal_.errIsTerminal && wantsColor();
  terminal_.err << (isColored ? "\033[1;31mbookstore:\033[0m " : "bookstore: ")
                << base::visibleText(withoutSecrets(text)) << std::endl;
}

std::string Output::secret(const std::string& value) const {
  return value.empty() || showsSecrets_ ? value : base::kSecretMask;
}

std::string Output::withoutSecrets(const std::string& text) const {
  return showsSecrets_ ? text : base::maskSecrets(text);
}

bool Output::flush() {
  terminal_.out.flush();
  return terminal_.out.good();
}

}  // namespace bookstore
