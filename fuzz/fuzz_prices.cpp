// Any text as the amount of a price. A text without a point or comma gets ".00"; any other text
// becomes a short number with a point.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz/Require.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"
#include "platform/fake/FakePlatform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static graphql::GraphQLApi api(std::make_shared<graphql::GraphQLStorageApi>());
  const std::string amount(data, data + size);
  const std::string price = api.normalizePrice(amount);
  fake::reset();
  if (amount.find_first_of(",.") == std::string::npos) {
    FUZZ_REQUIRE(price == (amount.empty() ? "0.00" : amount + ".00"));
  } else {
    FUZZ_REQUIRE(price.size() <= std::string("-21474836.-48").size());
    FUZZ_REQUIRE(price.find_first_not_of("-.0123456789") == std::string::npos);
    FUZZ_REQUIRE(price.find('.') != std::string::npos);
  }
  return 0;
}
