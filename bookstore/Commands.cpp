#include "bookstore/Commands.h"

#include "bookstore/Completion.h"
#include "bookstore/commands/AccountCommands.h"
#include "bookstore/commands/CookiesCommand.h"
#include "bookstore/commands/HeadersCommand.h"
#include "bookstore/commands/OpenCommand.h"
#include "bookstore/commands/Password.h"
#include "bookstore/commands/SampleAddCommand.h"
#include "bookstore/commands/SampleDetailsCommands.h"
#include "bookstore/commands/SampleQueueCommands.h"
#include "bookstore/commands/SampleWorkCommand.h"
#include "bookstore/commands/SessionCommands.h"
#include "bookstore/commands/SignInCommand.h"
#include "bookstore/commands/StatusCommand.h"
#include "bookstore/commands/StoresCommand.h"

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

Option argument(const std::string& name, const std::string& description) {
  return required(name, name, description);
}

Option storeOption() {
  return {"--store", "",
          "ID",      {},
          false,     "The store; by default the current store, or the only store in the list"};
}

Option emailOption() {
  return required("--email", "ADDRESS", "The customer's email address");
}

// The options, followed by those that say where the password comes from.
std::vector<Option> withPassword(std::vector<Option> options) {
  for (const Option& option : passwordOptions()) {
    options.push_back(option);
  }
  return options;
}

std::vector<Command> stateCommands() {
  return {
      {"stores",
       "List the regional stores in the store list file",
       Sends::WithRefresh,
       {flag("--refresh", "Fetch the list from the server first, and save it in the file")},
       runStores},
      {"headers",
       "Show the headers of a request to a store",
       Sends::Never,
       {required("--store", "ID",
                 "The store: its providerID, or its storeCode if no other store has it"),
        requiredChoice("--type", "TYPE", {"none", "integration", "customer", "refresh"},
                       "The credentials that the request carries")},
       runHeaders},
      {"status",
       "Show the files, the current store, the session and the device's identity",
       Sends::Never,
       {},
       runStatus},
  };
}

std::vector<Command> accountCommands() {
  return {
      {"register", "Register a customer at a store, without signing in", Sends::Always,
       withPassword({storeOption(), emailOption(),
                     required("--first-name", "NAME", "The customer's first name"),
                     required("--last-name", "NAME", "The customer's last name"),
                     flag("--subscribe", "Subscribe to the store's newsletter, too")}),
       runRegister},
      {"sign-in", "Sign the customer in to a store", Sends::Always,
       withPassword({storeOption(), emailOption()}), runSignIn},
      {"whoami",
       "Show the profile of the signed-in customer",
       Sends::Always,
       {storeOption()},
       runWhoami},
      {"refresh",
       "Exchange the refresh token for new tokens",
       Sends::Always,
       {storeOption()},
       runRefresh},
      {"sign-out", "Remove the customer's tokens", Sends::Never, {}, runSignOut},
      {"email-available",
       "Check whether an email address can be registered at a store",
       Sends::Always,
       {storeOption(), emailOption()},
       runEmailAvailable},
      {"reset-password",
       "Email a password reset link",
       Sends::Always,
       {storeOption(), emailOption()},
       runResetPassword},
  };
}

std::vector<Command> browserCommands() {
  return {
      {"cookies",
       "Show the cookies that sign a browser in as the customer",
       Sends::Never,
       {{"--format",
         "",
         "FORMAT",
         {"table", "json", "netscape"},
         false,
         "The output format; netscape is a cookie file for other programs"}},
       runCookies},
      {"open",
       "Open the store in a browser as the signed-in customer, and wait until it is closed",
       Sends::Never,
       {},
       runOpen},
  };
}

std::vector<Command> sampleCommands() {
  const Option book = argument("BOOK", "The book: the uid of a product of the store");
  return {
      {"sample",
       "Add samples of books to the queue, show the queue, and process it",
       Sends::Never,
       {},
       nullptr},
      {"sample add",
       "Add a sample to the queue, and start the background application",
       Sends::Never,
       {book, argument("FILE", "The sample's file: its path on the device")},
       runSampleAdd},
      {"sample list", "List the queue, oldest sample first", Sends::Never, {}, runSampleList},
      {"sample next", "Show the oldest sample of the queue", Sends::Never, {}, runSampleNext},
      {"sample remove",
       "Remove the oldest sample of a book from the queue",
       Sends::Never,
       {book},
       runSampleRemove},
      {"sample info",
       "Show title, author, price and picture of a book",
       Sends::Always,
       {book, storeOption()},
       runSampleInfo},
      {"sample price",
       "Show the price of a book",
       Sends::Always,
       {book, storeOption()},
       runSamplePrice},
      {"sample work",
       "Process the queue, as the background application does",
       Sends::Always,
       {},
       runSampleWork},
  };
}

std::vector<Command> shellCommands() {
  return {
      {"completion",
       "Print a shell's completion script for these commands",
       Sends::Never,
       {requiredChoice("SHELL", "SHELL", {"bash", "zsh", "fish"}, "The shell")},
       runCompletion},
  };
}

std::vector<Command> allCommands() {
  std::vector<Command> all;
  for (const std::vector<Command>& some :
       {stateCommands(), accountCommands(), browserCommands(), sampleCommands(), shellCommands()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace

const std::vector<Command>& commands() {
  static const std::vector<Command> table = allCommands();
  return table;
}

const std::vector<Option>& commonOptions() {
  static const std::vector<Option> options = {
      flag("--json", "Print one JSON document with a schema number instead of a table"),
      {"--verbose", "-v", "", {}, false, "Show the library's log"},
      flag("--show-secrets", "Show tokens and passwords instead of masking them"),
      flag("--dry-run", "Send nothing and change nothing; requires --curl"),
      flag("--curl", "Print the request as a curl command; requires --dry-run"),
  };
  return options;
}

const Option& helpOption() {
  static const Option option = {"--help", "-h", "", {}, false, "Print this help and exit"};
  return option;
}

const Option& versionOption() {
  static const Option option = flag("--version", "Print the version and exit");
  return option;
}

}  // namespace bookstore
