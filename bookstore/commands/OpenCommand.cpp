#include "bookstore/commands/OpenCommand.h"

#include <sstream>

#include <json/json.h>

#include "base/HttpSettings.h"
#include "base/Settings.h"
#include "bookstore/Failure.h"
#include "bookstore/commands/Browser.h"
#include "bookstore/commands/BrowserCookies.h"

namespace bookstore {

namespace {

// The fields of HOST:PORT:TO-HOST:TO-PORT. An IPv6 address makes more than four.
std::vector<std::string> fieldsOf(const std::string& entry) {
  std::vector<std::string> fields;
  std::istringstream in(entry + ":");
  for (std::string field; std::getline(in, field, ':');) {
    fields.push_back(field);
  }
  return fields;
}

// The browser's rule for one entry of the setting; empty when the browser has no such rule.
std::string resolverRule(const std::string& entry) {
  const std::vector<std::string> fields = fieldsOf(entry);
  if (fields.size() != 4 || fields[2].empty()) {
    return "";
  }
  const auto withPort = [](const std::string& host, const std::string& port) {
    return port.empty() ? host : host + ":" + port;
  };
  return "MAP " + withPort(fields[0].empty() ? "*" : fields[0], fields[1]) + " " +
         withPort(fields[2], fields[3]);
}

// The settings as options of the browser. Prints a note for each one that it has no option for.
std::vector<std::string> browserOptions(Output& output) {
  const base::HttpSettings settings = base::readHttpSettings();
  std::string rules;
  for (const std::string& entry : settings.connectTo) {
    const std::string rule = resolverRule(entry);
    if (rule.empty()) {
      output.note("the browser ignores " + entry + " of ORVANE_CONNECT_TO: it has no such rule");
    } else {
      rules += (rules.empty() ? "" : ", ") + rule;
    }
  }
  if (!settings.caFile.empty()) {
    output.note("the browser ignores ORVANE_CA_FILE: it may warn about the certificate");
  }
  if (!settings.pinnedKey.empty()) {
    output.note("the browser ignores ORVANE_PINNED_KEY: it accepts any trusted key");
  }
  return rules.empty() ? std::vector<std::string>()
                       : std::vector<std::string>{"--host-resolver-rules=" + rules};
}

void signIn(Browser& browser, const BrowserCookies& cookies) {
  Json::Value parameters;
  for (const auto& [name, value] : cookies.values) {
    Json::Value cookie;
    cookie["name"] = name;
    cookie["value"] = value;
    cookie["url"] = cookies.url;
    cookie["path"] = "/";
    cookie["secure"] = true;
    parameters["cookies"].append(cookie);
  }
  browser.call("Storage.setCookies", parameters);
}

void show(Browser& browser, const std::string& url) {
  Json::Value parameters;
  parameters["url"] = url;
  browser.call("Target.createTarget", parameters);
}

}  // namespace

void runOpen(Context& context) {
  const BrowserCookies cookies = browserCookies();
  const std::string program = findBrowser();
  if (program.empty()) {
    throw Failure(kLocalFailure,
                  "PATH has no browser of the Chromium family to open " + cookies.url,
                  "Install chromium, or give another browser the cookies from \"bookstore cookies "
                  "--format netscape --show-secrets\"");
  }
  {
    Browser browser(program, browserOptions(context.output));
    signIn(browser, cookies);
    show(browser, cookies.url);
    context.output.note("waiting until the browser is closed");
    browser.waitUntilClosed();
  }

  Json::Value document;
  document["url"] = cookies.url;
  document["browser"] = program;
  context.output.printResult("Closed: " + program + " showed " + cookies.url, document);
}

}  // namespace bookstore
