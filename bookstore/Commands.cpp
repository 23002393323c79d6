#include "bookstore/Commands.h"

namespace bookstore {

namespace {

Option flag(const std::string& name, const std::string& description) {
  return {name, "", "", {}, false, description};
}

Option required(const std::string& name, const std::string& value, const std::string& description) {
  return {name, "", value, {}, true, description};
}

Option requiredChoice(const std::string& name, const std::string& value,
                      const std::vector<std::string>& choices, const std::string& description) {
  return {name, "", value, choices, true, description};
}

}  // namespace

const std::vector<Command>& commands() {
  static const std::vector<Command> table = {
      {"stores",
       "List the regional stores that are kept in the store list file",
       Sends::WithRefresh,
       {flag("--refresh", "Ask the store service, and keep what it lists in the file")},
       runStores},
      {"headers",
       "Show the headers of a request to a store",
       Sends::Never,
       {required("--store", "ID",
                 "The store: its providerID, or its storeCode where only one store has it"),
        requiredChoice("--type", "TYPE", {"none", "integration", "customer", "refresh"},
                       "The credentials that the request carries")},
       runHeaders},
      {"status",
       "Show the files, the current store, the session and the identity of the device",
       Sends::Never,
       {},
       runStatus},
  };
  return table;
}

const std::vector<Option>& commonOptions() {
  static const std::vector<Option> options = {
      flag("--json", "Print one JSON document with a schema number instead of a table"),
      {"--verbose", "-v", "", {}, false, "Show the library's log"},
      flag("--show-secrets", "Show tokens and passwords instead of masking them"),
      flag("--dry-run", "Send nothing and change nothing; goes with --curl"),
      flag("--curl", "Print the request as a curl command; goes with --dry-run"),
  };
  return options;
}

const Option& helpOption() {
  static const Option option = {"--help", "-h", "", {}, false, "Print this help and end"};
  return option;
}

const Option& versionOption() {
  static const Option option = flag("--version", "Print the version and end");
  return option;
}

}  // namespace bookstore
