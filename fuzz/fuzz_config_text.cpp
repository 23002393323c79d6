// Any bytes as a configuration file: the parsed values can be written, and parse to the same
// values.

#include <cstdint>
#include <string>

#include "fuzz/Require.h"
#include "platform/host/ConfigText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const host::ConfigEntries entries = host::parseConfig(std::string(data, data + size)).entries;
  const host::ParsedConfig again = host::parseConfig(host::formatConfig(entries));
  FUZZ_REQUIRE(again.damagedLines.empty());
  FUZZ_REQUIRE(again.entries.size() == entries.size());
  for (const auto& [key, value] : entries) {
    const auto found = again.entries.find(key);
    FUZZ_REQUIRE(found != again.entries.end());
    FUZZ_REQUIRE(found->second.text == value.text);
    FUZZ_REQUIRE(found->second.isSecret == value.isSecret);
  }
  return 0;
}
