#include "tests/support/ScopedSetting.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

using support::ScopedSetting;
using support::ScopedSettings;

namespace {

const char kName[] = "SCOPED_SETTING_TEST";

std::string value() {
  const char* text = std::getenv(kName);
  return text == nullptr ? "unset" : text;
}

}  // namespace

TEST(ScopedSettingTest, UnsetsWhatWasNotSetBefore) {
  {
    const ScopedSetting setting(kName, "a");
    EXPECT_EQ(value(), "a");
  }
  EXPECT_EQ(value(), "unset");
}

TEST(ScopedSettingTest, RestoresTheOuterValue) {
  const ScopedSetting outer(kName, "");
  {
    const ScopedSetting inner(kName, "b");
    EXPECT_EQ(value(), "b");
  }
  EXPECT_EQ(value(), "");
}

TEST(ScopedSettingTest, RestoresTheFirstValueAfterSeveralChanges) {
  const ScopedSetting outer(kName, "first");
  {
    ScopedSettings settings;
    settings.set(kName, "second");
    settings.unset(kName);
    EXPECT_EQ(value(), "unset");
    settings.set(kName, "third");
  }
  EXPECT_EQ(value(), "first");
}
