#include "platform_check/Report.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace platform_check {

namespace {

std::size_t count(const std::vector<CheckResult>& results, Outcome outcome) {
  return static_cast<std::size_t>(
      std::count_if(results.begin(), results.end(),
                    [outcome](const CheckResult& each) { return each.result.outcome == outcome; }));
}

std::string asOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < ' '; },
      ' ');
  return text;
}

// A double-quoted scalar of YAML.
std::string yamlText(const std::string& text) {
  std::string result = "\"";
  for (const char byte : asOneLine(text)) {
    if (byte == '"' || byte == '\\') {
      result += '\\';
    }
    result += byte;
  }
  return result + "\"";
}

std::string xmlText(const std::string& text) {
  std::string result;
  for (const char byte : asOneLine(text)) {
    switch (byte) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

std::string secondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", seconds);
  return text;
}

}  // namespace

void writeTapStart(std::ostream& out, std::size_t count) {
  out << "TAP version 14\n1.." << count << std::endl;
}

void writeTapResult(std::ostream& out, std::size_t number, const CheckResult& result) {
  const bool hasFailed = result.result.outcome == Outcome::Failed;
  out << (hasFailed ? "not ok " : "ok ") << number << " - " << result.check.fullName();
  if (result.result.outcome == Outcome::Skipped) {
    out << " # SKIP " << asOneLine(result.result.reason);
  }
  out << "\n";
  if (hasFailed) {
    out << "  ---\n  reason: " << yamlText(result.result.reason)
        << "\n  remedy: " << yamlText(result.check.remedy) << "\n  ...\n";
  }
  out.flush();
}

void writeTapEnd(std::ostream& out, const std::vector<CheckResult>& results) {
  out << "# " << count(results, Outcome::Passed) << " passed, " << count(results, Outcome::Failed)
      << " failed, " << count(results, Outcome::Skipped) << " skipped" << std::endl;
}

void writeJunit(std::ostream& out, const std::vector<CheckResult>& results) {
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<testsuite name=\"graphql-platform-check\" tests=\"" << results.size() << "\" failures=\""
      << count(results, Outcome::Failed) << "\" errors=\"0\" skipped=\""
      << count(results, Outcome::Skipped) << "\">\n";
  for (const CheckResult& each : results) {
    out << "  <testcase classname=\"" << each.check.group << "\" name=\"" << each.check.name
        << "\" time=\"" << secondsText(each.seconds) << "\"";
    const std::string reason = xmlText(each.result.reason);
    if (each.result.outcome == Outcome::Failed) {
      out << "><failure message=\"" << reason << "\">" << xmlText(each.check.remedy)
          << "</failure></testcase>\n";
    } else if (each.result.outcome == Outcome::Skipped) {
      out << "><skipped message=\"" << reason << "\"/></testcase>\n";
    } else {
      out << "/>\n";
    }
  }
  out << "</testsuite>\n";
}

}  // namespace platform_check
