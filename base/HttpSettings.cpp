#include "base/HttpSettings.h"

#include <algorithm>
#include <limits>

#include "base/Settings.h"

namespace base {

namespace {

const long long kMostSeconds = 86400;

std::vector<std::string> splitAtCommas(const std::string& list) {
  std::vector<std::string> entries;
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    if (end > begin) {
      entries.push_back(list.substr(begin, end - begin));
    }
    begin = end + 1;
  }
  return entries;
}

long seconds(const Setting& setting) {
  return static_cast<long>(number(setting, 1, kMostSeconds));
}

}  // namespace

HttpSettings readHttpSettings() {
  HttpSettings result = {};
  result.caFile = text(settings::kCaFile);
  result.pinnedKey = text(settings::kPinnedKey);
  result.connectTo = splitAtCommas(text(settings::kConnectTo));
  result.http2 = choice(settings::kHttpVersion, {"1.1", "2"}) == "2";
  result.maxResponseBytes = static_cast<std::uint64_t>(
      number(settings::kMaxResponseBytes, 1, std::numeric_limits<long long>::max()));
  result.connectTimeoutSeconds = seconds(settings::kConnectTimeoutSeconds);
  result.stallTimeoutSeconds = seconds(settings::kStallTimeoutSeconds);
  return result;
}

}  // namespace base
