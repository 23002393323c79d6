#include "bookstore/commands/CookiesCommand.h"

#include <json/json.h>

#include "bookstore/Failure.h"
#include "bookstore/commands/BrowserCookies.h"
#include "bookstore/terminal/Table.h"

namespace bookstore {

namespace {

// JSON is requested with --json or with --format json.
std::string formatOf(const Context& context) {
  const std::string format = context.arguments.text("--format");
  if (!context.output.isJson()) {
    return format.empty() ? "table" : format;
  }
  if (!format.empty() && format != "json") {
    throw Failure(kUsage, "--json and --format " + format + " cannot be used together",
                  "Omit one of them");
  }
  return "json";
}

void printForPrograms(Output& output, const BrowserCookies& cookies) {
  Json::Value document;
  document["url"] = cookies.url;
  for (const auto& [name, value] : cookies.values) {
    document["cookies"][name] = output.secret(value);
  }
  output.printJson(document);
}

void printForPeople(Output& output, const BrowserCookies& cookies) {
  Table table({"COOKIE", "VALUE"});
  for (const auto& [name, value] : cookies.values) {
    table.addRow({name, output.secret(value)});
  }
  output.print(table);
}

// The host in https://user@host:port/path.
std::string hostOf(const std::string& url) {
  const std::size_t scheme = url.find("://");
  const std::size_t start = scheme == std::string::npos ? 0 : scheme + 3;
  const std::string authority = url.substr(start, url.find_first_of("/?#", start) - start);
  const std::string hostAndPort = authority.substr(authority.rfind('@') + 1);
  return hostAndPort.substr(0, hostAndPort.find(':', hostAndPort.rfind(']') + 1));
}

// A cookie for this host only, for all paths, for TLS only, until the browser ends.
std::string cookieFileLine(const std::string& host, const std::string& name,
                           const std::string& value) {
  if (value.find_first_of("\t\r\n") != std::string::npos) {
    throw Failure(kNoData, "the value of the cookie " + name + " has a tab or a line end",
                  "Use --format json");
  }
  return host + "\tFALSE\t/\tTRUE\t0\t" + name + "\t" + value + "\n";
}

void printCookieFile(Output& output, const BrowserCookies& cookies) {
  std::string lines = "# Netscape HTTP Cookie File\n";
  for (const auto& [name, value] : cookies.values) {
    lines += cookieFileLine(hostOf(cookies.url), name, value);
  }
  output.print(lines);
}

}  // namespace

void runCookies(Context& context) {
  const std::string format = formatOf(context);
  if (format == "netscape" && !context.arguments.has("--show-secrets")) {
    throw Failure(kUsage, "no program can use a cookie file with masked values",
                  "Add --show-secrets");
  }
  const BrowserCookies cookies = browserCookies();
  if (format == "json") {
    printForPrograms(context.output, cookies);
  } else if (format == "netscape") {
    printCookieFile(context.output, cookies);
  } else {
    printForPeople(context.output, cookies);
  }
}

}  // namespace bookstore
