#include "sample_app/SamplePath.h"

#include "tests/sample_app/SampleAppTest.h"

using sample_app::locateSample;
using ::testing::HasSubstr;

class SamplePathTest : public SampleAppTest {};

TEST_F(SamplePathTest, LivesBelowTheRoot) {
  EXPECT_EQ(locateSample("/mnt/ext1/books/1.sample").path, root.at("/mnt/ext1/books/1.sample"));
  EXPECT_EQ(locateSample("/1.sample").path, root.at("/1.sample"));
}

TEST_F(SamplePathTest, TakesOddNamesAsTheyAre) {
  for (const char* name : {" ", "a b", "line\nfeed", "\xff\xfe", "\"';$(x)`", "...", "-rf", "*"}) {
    const std::string path = std::string("/mnt/ext1/books/") + name;
    EXPECT_EQ(locateSample(path).path, root.at(path)) << name;
    EXPECT_TRUE(locateSample(path).isUsable()) << name;
  }
}

TEST_F(SamplePathTest, RefusesWhatIsNotAbsolute) {
  for (const std::string path : {"", "1.sample", "../1.sample", "mnt/ext1/books/1.sample"}) {
    EXPECT_THAT(locateSample(path).problem, HasSubstr("absolute")) << path;
  }
  EXPECT_THAT(locateSample(std::string("/mnt/ext1/books/a\0b", 19)).problem, HasSubstr("absolute"));
}

TEST_F(SamplePathTest, RefusesEveryStepUp) {
  for (const char* path : {"/../1.sample", "/mnt/ext1/books/../1.sample", "/mnt/..", "/..",
                           "/mnt/ext1/books/../../../../1.sample"}) {
    EXPECT_THAT(locateSample(path).problem, HasSubstr("'..'")) << path;
    EXPECT_EQ(locateSample(path).path, "");
  }
}

TEST_F(SamplePathTest, RefusesFolders) {
  for (const char* path : {"/", "/mnt/ext1/books/", "/mnt/ext1/books/."}) {
    EXPECT_THAT(locateSample(path).problem, HasSubstr("names a folder")) << path;
  }
}

TEST_F(SamplePathTest, RefusesAMissingFolder) {
  EXPECT_THAT(locateSample("/mnt/card/1.sample").problem, HasSubstr("No such file"));
  EXPECT_THAT(locateSample("/mnt/ext1/books/readme/1.sample").problem, HasSubstr("Not a dir"));
}

TEST_F(SamplePathTest, ALinkMayLeadAnywhereBelowTheRootButNotOutside) {
  const support::TemporaryFolder outside;
  std::filesystem::create_symlink(outside.path(), root.at("/mnt/out"));
  std::filesystem::create_symlink(root.at("/mnt/ext1"), root.at("/mnt/in"));
  EXPECT_THAT(locateSample("/mnt/out/1.sample").problem, HasSubstr("outside"));
  EXPECT_EQ(locateSample("/mnt/in/books/1.sample").path, root.at("/mnt/ext1/books/1.sample"));
  // A neighbour whose name begins as the root's does is outside, too.
  std::filesystem::create_directories(root.path() + "-neighbour");
  std::filesystem::create_symlink(root.path() + "-neighbour", root.at("/mnt/near"));
  EXPECT_THAT(locateSample("/mnt/near/1.sample").problem, HasSubstr("outside"));
}
