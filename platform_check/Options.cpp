#include "platform_check/Options.h"

#include <unistd.h>

#include <algorithm>

namespace platform_check {

namespace {

const char kDefaultFolder[] = "/tmp/graphql-platform-check";
const char kDefaultUrl[] = "https://127.0.0.1:8443/graphql";
const char kDefaultControl[] = "http://127.0.0.1:8480";
const unsigned int kDefaultTimeoutSeconds = 60;

unsigned int secondsOf(const std::string& text) {
  const bool isNumber = !text.empty() && text.size() <= 5 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
  if (!isNumber || std::stoul(text) == 0) {
    throw Misuse("--timeout is '" + text + "'; it must be a number of seconds from 1 to 99999");
  }
  return static_cast<unsigned int>(std::stoul(text));
}

std::string devicePathOf(const std::string& text) {
  if (text.size() < 2 || text.front() != '/') {
    throw Misuse("--folder is '" + text + "'; it must be a full path below /");
  }
  return text;
}

std::string httpsUrlOf(const char* option, const std::string& text) {
  if (text.compare(0, 8, "https://") != 0) {
    throw Misuse(std::string(option) + " is '" + text + "'; it must begin with https://");
  }
  return text;
}

std::string controlUrlOf(const std::string& text) {
  if (text.compare(0, 7, "http://") != 0 || text.find(':', 7) == std::string::npos) {
    throw Misuse("--control is '" + text + "'; it must look like http://127.0.0.1:8480");
  }
  return text;
}

std::string selectionOf(const std::string& text) {
  for (const Check& check : allChecks()) {
    if (text == check.group || text == check.fullName()) {
      return text;
    }
  }
  throw Misuse("--only is '" + text + "'; run --list for the names of groups and checks");
}

// One option; the parser and the help text are made from the table.
struct Option {
  const char* name;
  const char* argument;  // null when it takes none
  std::string meaning;
  void (*set)(Options& options, const std::string& text);
};

const std::vector<Option>& allOptions() {
  static const std::vector<Option> all = {
      {"--help", nullptr, "print this text",
       [](Options& options, const std::string&) { options.showsHelp = true; }},
      {"--list", nullptr, "print the names of the checks",
       [](Options& options, const std::string&) { options.showsList = true; }},
      {"--only", "NAME", "run a group or a single check; can be repeated",
       [](Options& options, const std::string& text) { options.only.insert(selectionOf(text)); }},
      {"--junit", "FILE", "write the results as JUnit XML, too",
       [](Options& options, const std::string& text) { options.junitFile = text; }},
      {"--root", "DIR", "where the device's / is on this machine (default: /)",
       [](Options& options, const std::string& text) { options.settings.root = text; }},
      {"--folder", "PATH",
       std::string("device path of a folder for the files (default: ") + kDefaultFolder + ")",
       [](Options& options, const std::string& text) {
         options.settings.folder = devicePathOf(text);
       }},
      {"--log", "FILE", "where the implementation logs: a file of this machine, or stderr",
       [](Options& options, const std::string& text) { options.settings.log = text; }},
      {"--url", "URL", std::string("GraphQL endpoint (default: ") + kDefaultUrl + ")",
       [](Options& options, const std::string& text) {
         options.settings.url = httpsUrlOf("--url", text);
       }},
      {"--control", "URL",
       std::string("control port of the store service (default: ") + kDefaultControl + ")",
       [](Options& options, const std::string& text) {
         options.settings.control = controlUrlOf(text);
       }},
      {"--untrusted-url", "URL", "server whose certificate is from an unknown authority",
       [](Options& options, const std::string& text) {
         options.settings.untrustedUrl = httpsUrlOf("--untrusted-url", text);
       }},
      {"--wrong-name-url", "URL", "server whose certificate is trusted but for another host",
       [](Options& options, const std::string& text) {
         options.settings.wrongNameUrl = httpsUrlOf("--wrong-name-url", text);
       }},
      {"--timeout", "SECONDS",
       "time after which a check counts as hung (default: " +
           std::to_string(kDefaultTimeoutSeconds) + ")",
       [](Options& options, const std::string& text) {
         options.settings.timeoutSeconds = secondsOf(text);
       }},
  };
  return all;
}

const Option& optionOf(const std::string& name) {
  const auto& all = allOptions();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&name](const Option& each) { return name == each.name; });
  if (found == all.end()) {
    throw Misuse("unknown argument '" + name + "'; run --help for the options");
  }
  return *found;
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size() + 1, width), ' ');
  return text;
}

}  // namespace

Options readOptions(const std::vector<std::string>& arguments) {
  Options options;
  options.settings = {"", kDefaultFolder,        kDefaultUrl, kDefaultControl, "", "",
                      "", kDefaultTimeoutSeconds};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Option& option = optionOf(arguments[i]);
    if (option.argument != nullptr && i + 1 == arguments.size()) {
      throw Misuse(arguments[i] + " needs a value: " + option.argument);
    }
    option.set(options, option.argument == nullptr ? "" : arguments[++i]);
  }
  options.settings.folder += "/" + std::to_string(::getpid());
  return options;
}

std::string helpText() {
  std::string text =
      "usage: graphql-platform-check [OPTION]...\n\n"
      "Checks an implementation of libov_sdk.so and liborvane_utilities.so, those that the "
      "dynamic\n"
      "linker finds, against what libgraphql_api.so.1 relies on. Prints the results as TAP 14.\n\n";
  for (const Option& option : allOptions()) {
    const std::string argument =
        option.argument == nullptr ? "" : std::string(" ") + option.argument;
    text += padded("  " + (option.name + argument), 24) + option.meaning + "\n";
  }
  return text +
         "\nFiles are written in a folder named by the process number below --folder, which is\n"
         "removed at the end. The implementation may create a key for secrets, and its own log.\n"
         "Exit status: 0 no check failed, 1 at least one failed, 2 wrong use.\n";
}

}  // namespace platform_check
