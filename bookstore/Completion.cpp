#include "bookstore/Completion.h"

#include <algorithm>
#include <iterator>

#include <json/json.h>

#include "bookstore/Commands.h"

namespace bookstore {

namespace {

// --- What all shells need from the table ---------------------------------------------------------

bool isPositional(const Option& option) {
  return option.name.front() != '-';
}

bool takesFile(const Option& option) {
  return option.value == "FILE";
}

// The options of the program itself.
std::vector<Option> programOptions() {
  return {helpOption(), versionOption()};
}

std::vector<Option> optionsOf(const Command& command) {
  std::vector<Option> options;
  if (command.run != nullptr) {
    options = command.options;
    options.insert(options.end(), commonOptions().begin(), commonOptions().end());
  }
  options.push_back(helpOption());
  return options;
}

std::vector<std::string> namesOf(const Option& option) {
  if (isPositional(option)) {
    return {};
  }
  return option.shortName.empty() ? std::vector<std::string>{option.name}
                                  : std::vector<std::string>{option.shortName, option.name};
}

// The commands of `group`; those of the program itself if it is empty.
std::vector<Command> commandsIn(const std::string& group, const std::vector<Command>& table) {
  std::vector<Command> found;
  std::copy_if(table.begin(), table.end(), std::back_inserter(found),
               [&group](const Command& command) {
                 const std::size_t blank = command.name.rfind(' ');
                 return (blank == std::string::npos ? "" : command.name.substr(0, blank)) == group;
               });
  return found;
}

std::string lastWord(const std::string& name) {
  return name.substr(name.rfind(' ') + 1);
}

std::vector<std::string> wordsOf(const std::vector<Command>& commands) {
  std::vector<std::string> words;
  words.reserve(commands.size());
  for (const Command& command : commands) {
    words.push_back(lastWord(command.name));
  }
  return words;
}

void append(const std::vector<std::string>& more, std::vector<std::string>* words) {
  words->insert(words->end(), more.begin(), more.end());
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() ? "" : between) + word;
  }
  return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// A quoted word of bash and zsh.
std::string quoted(const std::string& text) {
  return "'" + replaced(text, "'", "'\\''") + "'";
}

std::string quotedNames(const std::vector<Command>& table, const std::string& between) {
  std::vector<std::string> names;
  names.reserve(table.size());
  for (const Command& command : table) {
    names.push_back(quoted(command.name));
  }
  return joined(names, between);
}

// --- bash ----------------------------------------------------------------------------------------

std::string bashCase(const std::string& pattern, const std::string& statement) {
  return "    " + pattern + ") " + statement + " ;;\n";
}

// What can follow `name` (the program itself if empty) where no value is expected.
std::string bashWords(const std::string& name, const std::vector<Option>& options,
                      const std::vector<Command>& table) {
  std::vector<std::string> words = wordsOf(commandsIn(name, table));
  bool takesFiles = false;
  for (const Option& option : options) {
    append(isPositional(option) ? option.choices : namesOf(option), &words);
    takesFiles = takesFiles || (isPositional(option) && takesFile(option));
  }
  return bashCase(quoted(name),
                  "words=" + quoted(joined(words, " ")) + (takesFiles ? "; files=yes" : ""));
}

// What can follow the options of a command that take a value.
std::string bashValues(const Command& command) {
  std::string cases;
  for (const Option& option : optionsOf(command)) {
    if (isPositional(option) || option.value.empty()) {
      continue;
    }
    std::vector<std::string> patterns;
    for (const std::string& name : namesOf(option)) {
      patterns.push_back(quoted(command.name + " " + name));
    }
    cases += bashCase(joined(patterns, " | "), "words=" + quoted(joined(option.choices, " ")) +
                                                   " files=" + (takesFile(option) ? "yes" : "''"));
  }
  return cases;
}

// --- zsh -----------------------------------------------------------------------------------------

std::string zshFunction(const std::string& name) {
  return name.empty() ? "_bookstore" : "_bookstore_" + replaced(name, " ", "_");
}

std::string zshAction(const Option& option) {
  if (takesFile(option)) {
    return ":" + option.value + ":_files";
  }
  return ":" + option.value + ":" +
         (option.choices.empty() ? " " : "(" + joined(option.choices, " ") + ")");
}

std::string zshOption(const Option& option) {
  if (isPositional(option)) {
    return quoted(zshAction(option));
  }
  const std::string rest = "[" + replaced(replaced(option.description, "[", "\\["), "]", "\\]") +
                           "]" + (option.value.empty() ? "" : zshAction(option));
  const std::string name = option.name + (option.value.empty() ? "" : "=");  // "=" or a blank
  return option.shortName.empty() ? quoted(name + rest)
                                  : quoted("(" + joined(namesOf(option), " ") + ")") + "{" +
                                        option.shortName + "," + name + "}" + quoted(rest);
}

std::string zshArguments(const std::vector<Option>& options) {
  std::string lines;
  for (const Option& option : options) {
    lines += " \\\n    " + zshOption(option);
  }
  return lines;
}

// The program or a group: completes a command, and calls the command's function for the rest.
std::string zshGroup(const std::string& name, const std::vector<Option>& options,
                     const std::vector<Command>& table) {
  std::string commands;
  for (const Command& command : commandsIn(name, table)) {
    commands += "      " + quoted(lastWord(command.name) + ":" + command.description) + "\n";
  }
  return zshFunction(name) +
         "() {\n"
         "  local curcontext=$curcontext state line\n"
         "  local -a commands\n"
         "  _arguments -C" +
         zshArguments(options) +
         " \\\n    '1: :->command' '*:: :->arguments'\n"
         "  case $state in\n"
         "  command)\n"
         "    commands=(\n" +
         commands +
         "    )\n"
         "    _describe command commands\n"
         "    ;;\n"
         "  arguments)\n"
         "    (( $+functions[" +
         zshFunction(name) + "_$words[1]] )) && " + zshFunction(name) +
         "_$words[1]\n"
         "    ;;\n"
         "  esac\n"
         "}\n\n";
}

std::string zshCommand(const Command& command) {
  return zshFunction(command.name) + "() {\n  _arguments" + zshArguments(optionsOf(command)) +
         "\n}\n\n";
}

// --- fish ----------------------------------------------------------------------------------------

std::string fishQuoted(const std::string& text) {
  return "'" + replaced(replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

// One completion where the words so far name the command `at`.
std::string fishLine(const std::string& at, const std::string& what) {
  return "complete -c bookstore -n " + fishQuoted("__bookstore_at" + (at.empty() ? "" : " " + at)) +
         what + "\n";
}

std::string fishOption(const std::string& at, const Option& option) {
  const std::string choices =
      option.choices.empty() ? "" : " -a " + fishQuoted(joined(option.choices, " "));
  if (isPositional(option)) {
    return takesFile(option) ? fishLine(at, " -F") : choices.empty() ? "" : fishLine(at, choices);
  }
  std::string what = " -l " + option.name.substr(2);
  what += option.shortName.empty() ? "" : " -s " + option.shortName.substr(1);
  what += option.value.empty() ? "" : takesFile(option) ? " -r -F" : " -x" + choices;
  return fishLine(at, what + " -d " + fishQuoted(option.description));
}

}  // namespace

std::string bashCompletion(const std::vector<Command>& table) {
  std::string values;
  std::string words = bashWords("", programOptions(), table);
  for (const Command& command : table) {
    values += bashValues(command);
    words += bashWords(command.name, optionsOf(command), table);
  }
  return "# Completion for bash, printed by \"bookstore completion bash\".\n"
         "_bookstore() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "  local command='' word words='' files=''\n"
         "  # bash makes \"=\" a word of its own.\n"
         "  if [[ $current == '=' ]]; then current=''; fi\n"
         "  if [[ $previous == '=' ]]; then previous=${COMP_WORDS[COMP_CWORD - 2]}; fi\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD - 1}\"; do\n"
         "    case \"${command:+$command }$word\" in\n"
         "    " +
         quotedNames(table, " | ") +
         ")\n"
         "      command=${command:+$command }$word ;;\n"
         "    esac\n"
         "  done\n"
         "  case \"$command\" in\n" +
         words +
         "  esac\n"
         "  case \"$command $previous\" in\n" +
         values +
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "  if [[ $files ]]; then\n"
         "    mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -f -- \"$current\")\n"
         "    compopt -o filenames 2>/dev/null\n"
         "  fi\n"
         "}\n"
         "complete -F _bookstore bookstore\n";
}

std::string zshCompletion(const std::vector<Command>& table) {
  std::string functions = zshGroup("", programOptions(), table);
  for (const Command& command : table) {
    functions += command.run == nullptr ? zshGroup(command.name, optionsOf(command), table)
                                        : zshCommand(command);
  }
  return "#compdef bookstore\n"
         "# Completion for zsh, printed by \"bookstore completion zsh\".\n\n" +
         functions +
         "# Found in a folder of completions this file is the function; otherwise it was sourced.\n"
         "if [[ ${funcstack[1]} == _bookstore ]]; then\n"
         "  _bookstore \"$@\"\n"
         "else\n"
         "  compdef _bookstore bookstore\n"
         "fi\n";
}

std::string fishCompletion(const std::vector<Command>& table) {
  std::string lines;
  const auto addCommands = [&](const std::string& group) {
    for (const Command& command : commandsIn(group, table)) {
      lines += fishLine(group, " -a " + fishQuoted(lastWord(command.name)) + " -d " +
                                   fishQuoted(command.description));
    }
  };
  addCommands("");
  for (const Option& option : programOptions()) {
    lines += fishOption("", option);
  }
  for (const Command& command : table) {
    addCommands(command.name);
    for (const Option& option : optionsOf(command)) {
      lines += fishOption(command.name, option);
    }
  }
  return "# Completion for fish, printed by \"bookstore completion fish\".\n"
         "function __bookstore_at -d 'Whether the words so far name this command and no other'\n"
         "    set -l command\n"
         "    for word in (commandline -opc)[2..-1]\n"
         "        set -l longer (string join ' ' -- $command $word)\n"
         "        if contains -- $longer " +
         quotedNames(table, " ") +
         "\n"
         "            set command $longer\n"
         "        end\n"
         "    end\n"
         "    test \"$command\" = \"$argv\"\n"
         "end\n"
         "complete -c bookstore -f\n" +
         lines;
}

void runCompletion(Context& context) {
  const std::string shell = context.arguments.text("SHELL");
  const std::string script = shell == "bash"  ? bashCompletion(commands())
                             : shell == "zsh" ? zshCompletion(commands())
                                              : fishCompletion(commands());
  if (!context.output.isJson()) {
    context.output.print(script);
    return;
  }
  Json::Value document;
  document["shell"] = shell;
  document["script"] = script;
  context.output.printJson(document);
}

}  // namespace bookstore
