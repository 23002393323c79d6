#include "base/Settings.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"
#include "tests/support/TemporaryRoot.h"

using support::ScopedSetting;
using testing::HasSubstr;

namespace {

std::string page() {
  std::ifstream in(SETTINGS_PAGE);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(SettingsTest, ThePageListsEverySettingWithItsDefault) {
  const std::string text = page();
  for (const base::Setting& setting : base::allSettings()) {
    const std::string fallback = setting.fallback;
    const std::string shown = fallback.empty() ? "none" : "`" + fallback + "`";
    EXPECT_THAT(text, HasSubstr("| `" + std::string(setting.name) + "` | " + shown + " | "));
  }
}

TEST(SettingsTest, AnEmptySettingCountsAsNotSet) {
  const ScopedSetting setting("ORVANE_HTTP_VERSION", "");
  EXPECT_EQ(base::text(base::settings::kHttpVersion), "1.1");
}

TEST(SettingsTest, ASettingIsReadAnewEachTime) {
  const ScopedSetting one("ORVANE_HTTP_VERSION", "2");
  EXPECT_EQ(base::text(base::settings::kHttpVersion), "2");
  const ScopedSetting two("ORVANE_HTTP_VERSION", "1.1");
  EXPECT_EQ(base::text(base::settings::kHttpVersion), "1.1");
}

TEST(SettingsTest, ANumberThatIsNoneIsReportedOnceAndTheDefaultCounts) {
  EXPECT_TRUE(support::passesInNewProcess([] {
    testing::internal::CaptureStderr();
    for (const std::string text : {"x", "1x", "-1", "10000000", "x"}) {
      const ScopedSetting setting("ORVANE_CONNECT_TIMEOUT", text);
      EXPECT_EQ(base::number(base::settings::kConnectTimeoutSeconds, 0, 3600), 10) << text;
    }
    const std::string reported = testing::internal::GetCapturedStderr();
    EXPECT_THAT(reported, HasSubstr("ORVANE_CONNECT_TIMEOUT=x is not an integer"));
    EXPECT_EQ(std::count(reported.begin(), reported.end(), '\n'), 4);
  }));
}

TEST(SettingsTest, TheRootIsTheSettingElseTheStateFolder) {
  const ScopedSetting root("ORVANE_ROOT", "/r//");
  const ScopedSetting state("XDG_STATE_HOME", "/state/");
  const ScopedSetting home("HOME", "/home/");
  EXPECT_EQ(base::hostPath("/mnt"), "/r/mnt");
  const ScopedSetting noRoot("ORVANE_ROOT", "");
  EXPECT_EQ(base::hostPath("/mnt"), "/state/orvane/mnt");
  const ScopedSetting relativeState("XDG_STATE_HOME", "state");
  EXPECT_EQ(base::hostPath("/mnt"), "/home/.local/state/orvane/mnt");
}
