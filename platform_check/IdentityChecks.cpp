// Identity of the device, and what the class BookStoreVersionProxy says.

#include <ov_sdk.h>

#include <algorithm>
#include <set>

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "platform_check/Check.h"

using orvane::utilities::BookStoreVersionProxy;

namespace platform_check {

namespace {

const int kMostPixels = 100000;
const int kGenerationOfTheLibrary = 3;

struct Text {
  const char* function;
  const char* (*get)(void);
};

const Text kTexts[] = {{"GetDeviceModel()", &GetDeviceModel},
                       {"GetSoftwareVersion()", &GetSoftwareVersion},
                       {"GetSerialNumber()", &GetSerialNumber}};

void textsAreNotNull(const Settings&) {
  for (const Text& text : kTexts) {
    require(text.get() != nullptr, std::string(text.function) + " returned null");
  }
}

void textsFitIntoHeaders(const Settings&) {
  for (const Text& text : kTexts) {
    const std::string value = text.get();
    const bool hasControl = std::any_of(value.begin(), value.end(), [](char byte) {
      return static_cast<unsigned char>(byte) < ' ';
    });
    require(!hasControl, std::string(text.function) + " is " + quoted(value) +
                             ", which has a control character");
  }
}

void textsStayTheSame(const Settings&) {
  for (const Text& text : kTexts) {
    const char* const first = text.get();
    const std::string before = first;
    ScreenWidth();
    requireEqual(std::string(text.function) + " at the second call", text.get(), before);
    requireEqual(std::string("the text that ") + text.function + " returned first", first, before);
  }
}

void screenHasASize(const Settings&) {
  const int width = ScreenWidth();
  const int height = ScreenHeight();
  if (width == 0 && height == 0) {
    throw Skip("the implementation says that the size of the screen is not known");
  }
  for (const int pixels : {width, height}) {
    require(pixels > 0 && pixels <= kMostPixels,
            "the screen has " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
  }
}

void storeGenerationIsServed(const Settings&) {
  for (const bool refresh : {false, true, false}) {
    const int generation = BookStoreVersionProxy::storeVersion(refresh);
    if (generation != kGenerationOfTheLibrary) {
      throw Skip("the device uses store generation " + std::to_string(generation) +
                 "; the browser functions of the library need 3");
    }
  }
}

void tokenKeysAreDistinct(const Settings&) {
  const auto keys = [] {
    return std::vector<std::string>{BookStoreVersionProxy::configKeyAccessToken(),
                                    BookStoreVersionProxy::configKeyRefreshToken(),
                                    BookStoreVersionProxy::configKeyExpirationToken(),
                                    BookStoreVersionProxy::configKeySacAccessToken()};
  };
  const std::vector<std::string> first = keys();
  std::set<std::string> distinct(first.begin(), first.end());
  // The other keys that the library writes to the same file.
  distinct.insert({"storeUrl", "storeApiUrl", "storeProvider", "magentoCacheId"});
  requireEqual("the number of distinct keys in the token file",
               static_cast<long long>(distinct.size()), 8);
  require(distinct.count("") == 0, "a key of the token file is empty");
  require(keys() == first, "the keys of the token file differ at the second call");
}

}  // namespace

const std::vector<Check> kIdentityChecks = {
    {"identity", "texts-are-not-null", "Return an empty text where the device has no such value.",
     &textsAreNotNull},
    {"identity", "texts-fit-into-headers",
     "Return the text without line ends and other control characters.", &textsFitIntoHeaders},
    {"identity", "texts-stay-the-same",
     "Keep the text in memory that lives as long as the process.", &textsStayTheSame},
    {"identity", "screen-has-a-size",
     "Return the size in pixels, or that of a usual screen where it is not known.",
     &screenHasASize},
    {"identity", "store-generation-is-served", "Make storeVersion() return 3.",
     &storeGenerationIsServed},
    {"identity", "token-keys-are-distinct",
     "Return four keys that differ from each other and from storeUrl, storeApiUrl, storeProvider "
     "and magentoCacheId, and the same at each call.",
     &tokenKeysAreDistinct},
};

}  // namespace platform_check
