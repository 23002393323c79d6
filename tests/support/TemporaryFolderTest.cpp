#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ScopedSetting.h"

using support::contentOf;
using support::contentOfFile;
using support::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(TemporaryFolderTest, IsNewAndEmptyAndGoesWithItsContent) {
  std::string path;
  {
    const TemporaryFolder folder;
    const TemporaryFolder another;
    EXPECT_NE(folder.path(), another.path());
    EXPECT_THAT(contentOf(folder.path()), IsEmpty());
    path = folder.path();
    std::filesystem::create_directories(path + "/a/b");
    std::ofstream(path + "/a/b/file") << "text";
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolderTest, ThrowsWhereNoFolderCanBeMade) {
  const TemporaryFolder folder;
  std::ofstream(folder.path() + "/file") << "no folder";
  const support::ScopedSetting setting("TMPDIR", folder.path() + "/file");
  EXPECT_ANY_THROW(TemporaryFolder());
}

TEST(TemporaryFolderTest, ContentHasTheFilesOfEveryDepthInOrder) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.path() + "/b/c");
  std::ofstream(folder.path() + "/b/c/1") << "one";
  std::ofstream(folder.path() + "/a") << std::string("\0\n", 2);
  EXPECT_THAT(contentOf(folder.path()),
              ElementsAre(Pair("/a", std::string("\0\n", 2)), Pair("/b/c/1", "one")));
}

TEST(TemporaryFolderTest, AFileThatIsNotThereIsEmpty) {
  const TemporaryFolder folder;
  EXPECT_EQ(contentOfFile(folder.path() + "/none"), "");
}
