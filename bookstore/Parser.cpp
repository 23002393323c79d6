#include "bookstore/Parser.h"

#include <CLI/CLI.hpp>

#include "base/Settings.h"
#include "bookstore/Commands.h"
#include "bookstore/ExitCode.h"
#include "bookstore/Failure.h"
#include "bookstore/terminal/Table.h"

namespace bookstore {

namespace {

std::string namesOf(const Option& option) {
  return option.shortName.empty() ? option.name : option.shortName + "," + option.name;
}

void addOption(CLI::App* app, const Option& option, Arguments* arguments) {
  arguments->declare(option.name);
  if (option.value.empty()) {
    app->add_flag_callback(
        namesOf(option), [arguments, &option] { arguments->set(option.name, ""); },
        option.description);
    return;
  }
  CLI::Option* added = app->add_option_function<std::string>(
      namesOf(option),
      [arguments, &option](const std::string& value) { arguments->set(option.name, value); },
      option.description);
  const bool isPositional = option.name.front() != '-';
  added->type_name(isPositional ? "" : option.value)->required(option.isRequired);
  if (!option.choices.empty()) {
    added->check(CLI::IsMember(option.choices));
  }
}

CLI::App* addCommand(CLI::App* program, const Command& command) {
  const std::size_t blank = command.name.rfind(' ');
  const bool isInGroup = blank != std::string::npos;
  CLI::App* parent = isInGroup ? program->get_subcommand(command.name.substr(0, blank)) : program;
  return parent->add_subcommand(command.name.substr(isInGroup ? blank + 1 : 0),
                                command.description);
}

// One row of the table as CLI11 parsed it.
struct ParsedRow {
  const CLI::App* app = nullptr;
  Arguments arguments;
};

void addRow(CLI::App* program, const Command& command, ParsedRow* row) {
  CLI::App* app = addCommand(program, command);
  row->app = app;
  if (command.run == nullptr) {
    return;
  }
  for (const auto* options : {&command.options, &commonOptions()}) {
    for (const Option& option : *options) {
      addOption(app, option, &row->arguments);
    }
  }
}

std::string footer() {
  Table statuses;
  for (const ExitStatus& status : exitStatuses()) {
    statuses.addRow({"  " + std::to_string(status.code), status.meaning});
  }
  Table environment;
  environment.addRow({"  NO_COLOR", "if set to any value, no colour"});
  for (const base::Setting& setting : base::allSettings()) {
    environment.addRow({std::string("  ") + setting.name, setting.meaning});
  }
  return "Every command has --help, which lists its options.\n\nExit status:\n" +
         statuses.text(false) + "\nEnvironment:\n" + environment.text(false);
}

// Messages begin in lower case, those of CLI11 in upper case, unless with the name of an argument.
std::string asMessage(std::string text) {
  const bool isWord = text.size() > 1 && text[1] >= 'a' && text[1] <= 'z';
  if (isWord && text[0] >= 'A' && text[0] <= 'Z') {
    text[0] = static_cast<char>(text[0] - 'A' + 'a');
  }
  return text;
}

Failure usageFailure(const CLI::App& program, const std::string& what) {
  std::string command = "bookstore";
  for (const CLI::App* app = &program; !app->get_subcommands().empty();) {
    app = app->get_subcommands().front();
    command += " " + app->get_name();
  }
  return Failure(kUsage, what, "Run \"" + command + " --help\"");
}

}  // namespace

Invocation parse(const std::vector<std::string>& words, const std::vector<Command>& table) {
  CLI::App program("Calls the book store library from the command line.", "bookstore");
  program.set_help_flag(namesOf(helpOption()), helpOption().description);
  program.set_version_flag(namesOf(versionOption()), "bookstore " BOOKSTORE_VERSION,
                           versionOption().description);
  std::vector<ParsedRow> rows(table.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    addRow(&program, table[i], &rows[i]);
  }
  program.footer(footer());
  try {
    program.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::CallForHelp&) {
    return {program.help(), nullptr, {}};
  } catch (const CLI::CallForVersion& version) {
    return {std::string(version.what()) + "\n", nullptr, {}};
  } catch (const CLI::ParseError& error) {
    throw usageFailure(program, asMessage(error.what()));
  }
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (rows[i].app->parsed() && table[i].run != nullptr) {
      return {"", &table[i], rows[i].arguments};
    }
  }
  throw usageFailure(program, "a command is missing");
}

}  // namespace bookstore
