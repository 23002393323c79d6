#include "bookstore/Run.h"

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <memory>
#include <system_error>

#include <json/json.h>

#include "base/DryRun.h"
#include "base/Log.h"
#include "base/Settings.h"
#include "bookstore/ExitCode.h"
#include "bookstore/Failure.h"
#include "bookstore/Parser.h"
#include "bookstore/terminal/Output.h"

namespace bookstore {

namespace {

class DryRunScope {
 public:
  explicit DryRunScope(bool isOn) { base::setDryRun(isOn); }
  ~DryRunScope() { base::setDryRun(false); }

  DryRunScope(const DryRunScope&) = delete;
  DryRunScope& operator=(const DryRunScope&) = delete;
};

void changeSetting(const base::Setting& setting, const std::string& value) {
  ::setenv(setting.name, value.c_str(), 1);
}

// The options never make the log shorter than the settings do.
void adjustLog(const Arguments& arguments) {
  const long long level = base::number(base::settings::kLogLevel, 0, 9);
  if (arguments.has("--verbose") && level < base::kLogInformation) {
    changeSetting(base::settings::kLogLevel, std::to_string(base::kLogInformation));
  } else if (base::text(base::settings::kLogLevel) != std::to_string(level)) {
    // The value is not valid, which has been reported. The platform reads the setting again, and
    // must not report it again.
    changeSetting(base::settings::kLogLevel, std::to_string(level));
  }
  if (arguments.has("--show-secrets")) {
    changeSetting(base::settings::kLogSecrets, "1");
  }
}

void checkDryRun(const Command& command, const Arguments& arguments) {
  const bool isDryRun = arguments.has("--dry-run");
  if (isDryRun != arguments.has("--curl")) {
    throw Failure(kUsage, "--dry-run and --curl must be used together",
                  "Add the other option, or omit both");
  }
  if (!isDryRun) {
    return;
  }
  switch (command.sends) {
    case Sends::Always:
      return;
    case Sends::WithRefresh:
      if (!arguments.has("--refresh")) {
        throw Failure(kUsage, "\"" + command.name + "\" sends a request only with --refresh",
                      "Add --refresh, or omit --dry-run and --curl");
      }
      return;
    case Sends::Never:
      throw Failure(kUsage, "\"" + command.name + "\" sends no request",
                    "Omit --dry-run and --curl");
  }
}

void printDryRun(const base::DryRun& dryRun, Output* output) {
  const std::string command = output->withoutSecrets(dryRun.curlCommand());
  if (output->isJson()) {
    Json::Value document;
    document["curl"] = command;
    output->printJson(document);
  } else {
    output->print(command + "\n");
  }
}

void runCommand(const Invocation& invocation, Output* output) {
  const Arguments& arguments = invocation.arguments;
  output->setJson(arguments.has("--json"));
  output->setShowSecrets(arguments.has("--show-secrets"));
  checkDryRun(*invocation.command, arguments);
  adjustLog(arguments);
  const DryRunScope dryRunScope(arguments.has("--dry-run"));
  try {
    const auto storage = std::make_shared<graphql::GraphQLStorageApi>();
    graphql::GraphQLApi api(storage);
    Context context{arguments, *output, storage, api};
    invocation.command->run(context);
  } catch (const base::DryRun& dryRun) {
    printDryRun(dryRun, output);
  }
}

void execute(const std::vector<std::string>& words, const std::vector<Command>& table,
             Output* output) {
  const Invocation invocation = parse(words, table);
  if (invocation.command == nullptr) {
    output->print(invocation.text);
  } else {
    runCommand(invocation, output);
  }
  errno = 0;
  if (!output->flush()) {
    const std::string reason = errno == 0 ? "" : ": " + std::generic_category().message(errno);
    throw Failure(kLocalFailure, "cannot write to standard output" + reason,
                  "Check that its reader is running, or free some space on its disk");
  }
}

Failure unexpectedFailure(const char* what) {
  return Failure(
      kLocalFailure, std::string("unexpected failure: ") + what,
      "Check the files below " + base::rootFolder() + ", or run the command again with -v");
}

// The Failure for the current exception: the only place that knows all kinds of exceptions.
Failure currentFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const Json::Exception& exception) {
    return Failure(kNoData,
                   withServerWords("the store's response cannot be read", exception.what()),
                   "Run the command again with -v to see the response");
  } catch (const std::exception& exception) {
    return unexpectedFailure(exception.what());
  } catch (...) {
    return unexpectedFailure("no description");
  }
}

}  // namespace

int run(const std::vector<std::string>& words, const Terminal& terminal,
        const std::vector<Command>& table) {
  Output output(terminal);
  try {
    execute(words, table, &output);
    return kDone;
  } catch (...) {
    const Failure failure = currentFailure();
    output.fail(failure);
    return failure.code();
  }
}

}  // namespace bookstore
