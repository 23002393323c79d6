// A command of the program: a row of the table (Commands.h) and one function. The parser
// and
// --help are made from these rows.

#ifndef BOOKSTORE_COMMAND_H_
#define BOOKSTORE_COMMAND_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bookstore/terminal/Output.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace bookstore {

struct Option {
  std::string name;       // "--store"; a name without dashes is that of a positional argument
  std::string shortName;  // "-v"; empty when there is none
  std::string value;      // the name of the value in help; empty for a flag
  std::vector<std::string> choices;  // the values allowed; empty for any
  bool isRequired = false;
  std::string description;  // one line
};

// The options and arguments that were given. A name that is not in the command's row throws
// std::out_of_range.
class Arguments {
 public:
  // Adds `name` as not given.
  void declare(const std::string& name) { values_[name]; }
  void set(const std::string& name, const std::string& value) { values_[name] = value; }

  bool has(const std::string& name) const { return values_.at(name).has_value(); }
  // Empty if the option was not given.
  std::string text(const std::string& name) const { return values_.at(name).value_or(""); }

 private:
  std::map<std::string, std::optional<std::string>> values_;
};

// What a command's function uses; owned by run(), and valid during the call.
struct Context {
  const Arguments& arguments;
  Output& output;
  const std::shared_ptr<graphql::GraphQLStorageApi>& storage;
  graphql::GraphQLApi& api;
};

// When a command sends a request.
enum class Sends { Never, Always, WithRefresh };

struct Command {
  std::string name;         // as it is typed; "group command" in a group
  std::string description;  // one line
  Sends sends;
  std::vector<Option> options;  // without commonOptions(), which every command has
  // Does the work and prints the result; throws Failure if it cannot. Null for a group, whose row
  // precedes those of its commands.
  void (*run)(Context& context);
};

}  // namespace bookstore

#endif  // BOOKSTORE_COMMAND_H_
