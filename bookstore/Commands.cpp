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
  return {"--store", "",    "ID",
          {},        false, "The store; without it the current one, or the only one known"};
}

Option emailOption() {
  return required("--email", "ADDRESS", "The customer's e-mail address");
}

// The options, and after them those that say where the password comes from.
std::vector<Option> withPassword(std::vector<Option> options) {
  for (const Option& option : passwordOptions()) {
    options.push_back(option);
  }
  return options;
}

std::vector<Command> stateCommands() {
  return {
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
}

std::vector<Command> accountCommands() {
  return {
      {"register", "Register a customer at a store; does not sign in", Sends::Always,
       withPassword({storeOption(), emailOption(),
                     required("--first-name", "NAME", "The customer's first name"),
                     required("--last-name", "NAME", "The customer's last name"),
                     flag("--subscribe", "Order the store's newsletter, too")}),
       runRegister},
      {"sign-in", "Sign the customer in to a store", Sends::Always,
       withPassword({storeOption(), emailOption()}), runSignIn},
      {"whoami", "Ask the store who is signed in", Sends::Always, {storeOption()}, runWhoami},
      {"refresh",
       "Buy new tokens for the refresh token",
       Sends::Always,
       {storeOption()},
       runRefresh},
      {"sign-out", "Forget the customer's tokens", Sends::Never, {}, runSignOut},
      {"email-available",
       "Ask a store whether an address may still be registered",
       Sends::Always,
       {storeOption(), emailOption()},
       runEmailAvailable},
      {"reset-password",
       "Have a store mail a link with which the customer sets a new password",
       Sends::Always,
       {storeOption(), emailOption()},
       runResetPassword},
  };
}

std::vector<Command> browserCommands() {
  return {
      {"cookies",
       "Show the cookies with which a browser is the signed-in customer",
       Sends::Never,
       {{"--format",
         "",
         "FORMAT",
         {"table", "json", "netscape"},
         false,
         "How to print them; netscape is a cookie file for other programs"}},
       runCookies},
      {"open",
       "Start a browser in which the customer is signed in, and wait until it is closed",
       Sends::Never,
       {},
       runOpen},
  };
}

std::vector<Command> sampleCommands() {
  const Option book = argument("BOOK", "The book: the uid of a product of the store");
  return {
      {"sample",
       "Queue the samples of books, look at the queue, and work it through",
       Sends::Never,
       {},
       nullptr},
      {"sample add",
       "Queue a sample, and start the background application",
       Sends::Never,
       {book, argument("FILE", "The sample's file, by its path on the device")},
       runSampleAdd},
      {"sample list", "List the queue, the oldest sample first", Sends::Never, {}, runSampleList},
      {"sample next", "Show the oldest sample of the queue", Sends::Never, {}, runSampleNext},
      {"sample remove",
       "Remove the oldest sample of a book from the queue",
       Sends::Never,
       {book},
       runSampleRemove},
      {"sample info",
       "Ask a store for title, author, price and picture of a book",
       Sends::Always,
       {book, storeOption()},
       runSampleInfo},
      {"sample price",
       "Ask a store for the price of a book",
       Sends::Always,
       {book, storeOption()},
       runSamplePrice},
      {"sample work",
       "Work the queue through, as the background application does",
       Sends::Always,
       {},
       runSampleWork},
  };
}

std::vector<Command> shellCommands() {
  return {
      {"completion",
       "Print the script with which a shell completes these commands and their options",
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
