#include "tests/support/TemporaryRoot.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using support::TemporaryRoot;
using ::testing::ElementsAre;

TEST(TemporaryRootTest, IsTheRootFolderWhileItLives) {
  const support::ScopedSetting before("ORVANE_ROOT", "/before");
  auto root = std::make_unique<TemporaryRoot>();
  const std::string path = root->path();
  EXPECT_EQ(std::getenv("ORVANE_ROOT"), path);
  root->put("/a/b", "text");
  root.reset();
  EXPECT_EQ(std::getenv("ORVANE_ROOT"), std::string("/before"));
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryRootTest, KeepsFilesByTheirDevicePaths) {
  const TemporaryRoot root;
  root.put("/a/b", "text");
  root.put("/a/a", "");
  EXPECT_EQ(root.contentOf("/a/b"), "text");
  EXPECT_EQ(root.contentOf("/a/c"), "");
  EXPECT_EQ(root.at("/a/b"), root.path() + "/a/b");
  EXPECT_THAT(root.namesIn("/a"), ElementsAre("a", "b"));
  EXPECT_EQ(root.modeOf("/a/b"), 0600U);
  EXPECT_EQ(root.modeOf("/a/c"), 0U);
}

TEST(TemporaryRootTest, DatesFilesBeyond2038) {
  const TemporaryRoot root;
  root.put("/a", "");
  root.setDate("/a", support::kBeyond2038);
  struct stat status = {};
  ASSERT_EQ(::stat(root.at("/a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, support::kBeyond2038);
  EXPECT_ANY_THROW(root.setDate("/none", 0));
}

TEST(TemporaryRootTest, ReadsTheLogAndForgetsIt) {
  const TemporaryRoot root;
  EXPECT_EQ(root.log(), "");
  std::ofstream(std::getenv("ORVANE_LOG")) << "a line\n";
  EXPECT_EQ(root.log(), "a line\n");
  root.clearLog();
  EXPECT_EQ(root.log(), "");
}
