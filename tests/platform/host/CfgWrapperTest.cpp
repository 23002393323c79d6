#include <orvane/utilities/CfgWrapper.h>

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/host/ConfigFile.h"
#include "tests/support/TemporaryRoot.h"

using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;
using support::ScopedSetting;
using support::TemporaryFolder;
using support::TemporaryRoot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const char kFolder[] = "/mnt/ext1/system/state/cache";
const char kPath[] = "/mnt/ext1/system/state/cache/test.cfg";

}  // namespace

class CfgWrapperTest : public testing::Test {
 protected:
  static void save(const std::string& key, const std::string& text) {
    CfgWrapper config(kPath, CfgWrapper::Write);
    WriteString(config.handle, key.c_str(), text.c_str());
    config.saveAndClose();
  }

  static std::string load(const std::string& key) {
    return CfgWrapper(kPath, CfgWrapper::Read).read<std::string>(key, "(missing)");
  }

  // Shows whether the file at the path was replaced or written.
  std::tuple<ino_t, time_t, long> mark() const {
    struct stat status = {};
    EXPECT_EQ(::stat(root_.at(kPath).c_str(), &status), 0);
    return {status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  }

  TemporaryRoot root_;
};

TEST_F(CfgWrapperTest, OpensAMissingFileAsAnEmptyOneAndMakesNothing) {
  CfgWrapper config(kPath, CfgWrapper::Read);
  EXPECT_THAT(config.keys(), IsEmpty());
  EXPECT_FALSE(config.readIfExists<std::string>("a"));
  config.closeNoSave();
  EXPECT_FALSE(std::filesystem::exists(root_.path()));
  EXPECT_EQ(root_.log(), "");
}

TEST_F(CfgWrapperTest, KnowsEachKeyAsSoonAsItIsWrittenOrSavedByAnother) {
  save("a", "1");
  CfgWrapper config(kPath, CfgWrapper::Write);
  EXPECT_THAT(config.keys(), ElementsAre("a"));
  WriteString(config.handle, "b", "2");
  EXPECT_THAT(config.keys(), ElementsAre("a", "b"));
  WriteSecret(config.handle, "c", "3");
  EXPECT_THAT(config.keys(), ElementsAre("a", "b", "c"));
  save("d", "4");
  config.save();
  EXPECT_THAT(config.keys(), ElementsAre("a", "b", "c", "d"));
}

TEST_F(CfgWrapperTest, GivesTheDefaultForAnAbsentKey) {
  save("a", "1");
  const CfgWrapper config(kPath, CfgWrapper::Read);
  EXPECT_EQ(ReadInt(config.handle, "x", 7), 7);
  EXPECT_STREQ(ReadString(config.handle, "x", "default"), "default");
  EXPECT_STREQ(ReadSecret(config.handle, "x", "default"), "default");
  EXPECT_EQ(ReadString(config.handle, nullptr, nullptr), nullptr);
}

TEST_F(CfgWrapperTest, ReadsWhatIsNoWholeNumberAsTheDefaultAndSaysSo) {
  for (const std::string text : {"", "a", "1a", " 1", "1 ", "+1", "0x1", "2147483648", "1.0"}) {
    save("a", text);
    root_.clearLog();
    EXPECT_EQ(ReadInt(CfgWrapper(kPath, CfgWrapper::Read).handle, "a", 7), 7) << text;
    EXPECT_THAT(root_.log(), HasSubstr("a is not an integer; using the default")) << text;
  }
}

TEST_F(CfgWrapperTest, MergesWithWhatWasSavedSinceItWasOpened) {
  save("a", "1");
  CfgWrapper slow(kPath, CfgWrapper::Write);
  EXPECT_THAT(slow.keys(), ElementsAre("a"));
  save("a", "2");
  save("b", "3");
  WriteString(slow.handle, "c", "4");
  slow.save();
  EXPECT_THAT(slow.keys(), ElementsAre("a", "b", "c"));
  EXPECT_EQ(load("a"), "2");
  EXPECT_EQ(load("b"), "3");
  EXPECT_EQ(load("c"), "4");
}

TEST_F(CfgWrapperTest, WritesAKeyOnceAndNotAgainAtALaterSave) {
  CfgWrapper config(kPath, CfgWrapper::Write);
  WriteString(config.handle, "a", "1");
  config.save();
  save("a", "2");
  WriteString(config.handle, "b", "3");
  config.saveAndClose();
  EXPECT_EQ(load("a"), "2");
}

TEST_F(CfgWrapperTest, DoesNotSaveAFileThatWasOpenedToRead) {
  save("a", "1");
  CfgWrapper config(kPath, CfgWrapper::Read);
  WriteString(config.handle, "a", "2");
  config.saveAndClose();
  EXPECT_EQ(load("a"), "1");
  EXPECT_THAT(root_.log(), HasSubstr("opened read-only"));
}

TEST_F(CfgWrapperTest, HoldsNothingOnceItIsClosed) {
  save("a", "1");
  CfgWrapper config(kPath, CfgWrapper::Write);
  config.closeNoSave();
  EXPECT_EQ(config.handle, nullptr);
  EXPECT_THAT(config.keys(), IsEmpty());
  EXPECT_STREQ(ReadString(config.handle, "a", "default"), "default");
  WriteString(config.handle, "a", "2");
  config.save();
  EXPECT_EQ(load("a"), "1");
  EXPECT_THAT(root_.log(), HasSubstr("a was not written"));
  EXPECT_THAT(root_.log(), HasSubstr("Nothing is saved"));
}

TEST_F(CfgWrapperTest, RefusesAValueWithoutAKey) {
  CfgWrapper config(kPath, CfgWrapper::Write);
  WriteString(config.handle, nullptr, "x");
  EXPECT_THAT(config.keys(), IsEmpty());
  EXPECT_THAT(root_.log(), HasSubstr("its key is null"));
}

TEST_F(CfgWrapperTest, TakesNoTextForAnEmptyOne) {
  CfgWrapper config(kPath, CfgWrapper::Write);
  WriteString(config.handle, "a", nullptr);
  EXPECT_STREQ(ReadString(config.handle, "a", "default"), "");
}

TEST_F(CfgWrapperTest, MakesFilesAndFoldersThatOnlyTheirOwnerOpens) {
  ::umask(0);
  save("a", "1");
  EXPECT_EQ(root_.modeOf(kPath), 0600u);
  EXPECT_EQ(root_.modeOf(std::string(kFolder) + "/.test.cfg.lock"), 0600u);
  for (const char* folder : {"", "/mnt", "/mnt/ext1", "/mnt/ext1/system/state/cache"}) {
    EXPECT_EQ(root_.modeOf(folder), 0700u) << folder;
  }
}

TEST_F(CfgWrapperTest, LeavesNothingButTheFileAndItsLock) {
  save("a", "1");
  save("a", "2");
  EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".test.cfg.lock", "test.cfg"));
}

TEST_F(CfgWrapperTest, ReplacesWhatADeadWriterLeftAndNothingElse) {
  const std::string folder = kFolder;
  for (const char* name : {"/.test.cfg.new", "/.other.cfg.new", "/test.cfg.new"}) {
    root_.put(folder + name, "");
  }
  save("a", "1");
  EXPECT_EQ(load("a"), "1");
  EXPECT_THAT(root_.namesIn(folder),
              ElementsAre(".other.cfg.new", ".test.cfg.lock", "test.cfg", "test.cfg.new"));
}

TEST_F(CfgWrapperTest, NeverWritesThroughALinkInPlaceOfTheNewFile) {
  root_.put("/elsewhere", "x");
  root_.put(std::string(kFolder) + "/other", "");
  std::filesystem::create_symlink(root_.at("/elsewhere"),
                                  root_.at(std::string(kFolder) + "/.test.cfg.new"));
  save("a", "1");
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(root_.contentOf("/elsewhere"), "x");
}

// --- Saves that change nothing -------------------------------------------------------------------

TEST_F(CfgWrapperTest, LeavesAFileAloneThatHoldsAllOfItAlready) {
  save("a", "1");
  const auto before = mark();
  save("a", "1");
  EXPECT_EQ(mark(), before);
  save("a", "2");
  EXPECT_NE(mark(), before);
}

TEST_F(CfgWrapperTest, AddsWhatIsMissingThoughNoValueChanges) {
  for (const char* content : {"a=1\n", "a=1\nb=1\n"}) {
    root_.put(kPath, content);
    const auto before = mark();
    host::ConfigFile file(kPath, host::ConfigFile::Access::Write);
    file.write("a", "1");
    file.writeIfMissing("b", "2");
    EXPECT_TRUE(file.save());
    const bool wasMissing = std::string(content) == "a=1\n";
    EXPECT_EQ(load("b"), wasMissing ? "2" : "1");
    EXPECT_EQ(mark() != before, wasMissing);
  }
}

TEST_F(CfgWrapperTest, ReplacesAFileInWhichAnotherProgramChangedTheKeyMeanwhile) {
  save("a", "1");
  CfgWrapper config(kPath, CfgWrapper::Write);
  EXPECT_EQ(config.read<std::string>("a", ""), "1");
  WriteString(config.handle, "a", "1");
  save("a", "2");
  config.saveAndClose();
  EXPECT_EQ(load("a"), "1");
}

TEST_F(CfgWrapperTest, ReplacesADamagedFileThoughNoValueChanges) {
  root_.put(kPath, "a=1\ndamaged\n");
  save("a", "1");
  EXPECT_THAT(root_.contentOf(kPath), Not(HasSubstr("damaged")));
}

TEST_F(CfgWrapperTest, ReplacesASecretByATextOfTheSameWriting) {
  root_.put(kPath, "a=secret:v1:AAAA\n");
  save("a", "v1:AAAA");
  EXPECT_EQ(load("a"), "v1:AAAA");
}

TEST_F(CfgWrapperTest, NeverFollowsALinkAtTheLockFile) {
  root_.put("/elsewhere", "x");
  root_.put(std::string(kFolder) + "/other", "");
  std::filesystem::create_symlink(root_.at("/elsewhere"),
                                  root_.at(std::string(kFolder) + "/.test.cfg.lock"));
  save("a", "1");
  EXPECT_EQ(load("a"), "(missing)");
  EXPECT_THAT(root_.log(), HasSubstr("open lock file"));
}

TEST_F(CfgWrapperTest, LogsDamagedLinesByFileAndNumberAndReadsTheRest) {
  root_.put(kPath, "a=1\nnonsense\nb=\\q\nc=3\n");
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(load("c"), "3");
  EXPECT_EQ(load("b"), "(missing)");
  EXPECT_THAT(root_.log(), HasSubstr(root_.at(kPath) + ":2: "));
  EXPECT_THAT(root_.log(), HasSubstr(root_.at(kPath) + ":3: "));
  EXPECT_THAT(root_.log(), Not(HasSubstr("nonsense")));
}

TEST_F(CfgWrapperTest, LogsAFewOfManyDamagedLines) {
  std::string content;
  for (int i = 0; i < 1000; ++i) {
    content += "x\n";
  }
  root_.put(kPath, content);
  load("a");
  const std::string log = root_.log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 11);
  EXPECT_THAT(log, HasSubstr("990 more lines"));
}

TEST_F(CfgWrapperTest, KeepsADamagedFileBesideTheNewOne) {
  root_.put(kPath, "a=1\nnonsense\n");
  save("b", "2");
  EXPECT_EQ(root_.contentOf(std::string(kPath) + ".damaged"), "a=1\nnonsense\n");
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(load("b"), "2");
  EXPECT_THAT(root_.log(), HasSubstr("kept as " + root_.at(kPath) + ".damaged"));
}

TEST_F(CfgWrapperTest, KeepsEachDamagedFile) {
  root_.put(kPath, "first\n");
  save("a", "1");
  root_.put(kPath, "second\n");
  save("a", "2");
  EXPECT_EQ(root_.contentOf(std::string(kPath) + ".damaged"), "first\n");
  EXPECT_EQ(root_.contentOf(std::string(kPath) + ".damaged.1"), "second\n");
}

TEST_F(CfgWrapperTest, KeepsADamagedFileOnceWhenAWriterDiedOverIt) {
  root_.put(kPath, "first\n");
  std::filesystem::create_hard_link(root_.at(kPath), root_.at(kPath) + ".damaged");
  save("a", "1");
  EXPECT_EQ(root_.contentOf(std::string(kPath) + ".damaged"), "first\n");
  EXPECT_FALSE(std::filesystem::exists(root_.at(kPath) + ".damaged.1"));
}

TEST_F(CfgWrapperTest, DoesNotReplaceADamagedFileThatCannotBeKept) {
  root_.put(std::string(kPath) + ".damaged", "0");
  for (int number = 1; number < 10; ++number) {
    root_.put(std::string(kPath) + ".damaged." + std::to_string(number), "x");
  }
  root_.put(kPath, "eleventh\n");
  save("a", "1");
  EXPECT_EQ(root_.contentOf(kPath), "eleventh\n");
  EXPECT_EQ(root_.contentOf(std::string(kPath) + ".damaged"), "0");
  EXPECT_THAT(root_.log(), HasSubstr("move away the earlier damaged files"));
}

TEST_F(CfgWrapperTest, ReadsAFolderInPlaceOfTheFileAsEmptyAndDoesNotReplaceIt) {
  std::filesystem::create_directories(root_.at(kPath));
  EXPECT_EQ(load("a"), "(missing)");
  EXPECT_THAT(root_.log(), HasSubstr("Cannot read " + root_.at(kPath)));
  root_.clearLog();
  save("a", "1");
  EXPECT_TRUE(std::filesystem::is_directory(root_.at(kPath)));
  EXPECT_THAT(root_.log(), HasSubstr("Cannot save " + root_.at(kPath)));
  EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".test.cfg.lock", "test.cfg"));
}

TEST_F(CfgWrapperTest, DoesNotWaitForAPipeInPlaceOfTheFile) {
  root_.put(std::string(kFolder) + "/other", "");
  ASSERT_EQ(::mkfifo(root_.at(kPath).c_str(), 0600), 0);
  EXPECT_EQ(load("a"), "(missing)");
  EXPECT_THAT(root_.log(), HasSubstr("Cannot read"));
}

TEST_F(CfgWrapperTest, ReadsAHugeFileAsEmptyAndDoesNotReplaceIt) {
  // Truncated to 31 or 32 bits, the last two sizes would be small.
  for (const std::uint64_t size : {(1ull << 24) + 1, (1ull << 31) + 10, (1ull << 32) + 10}) {
    root_.clearLog();
    root_.put(kPath, "a=1\n");
    ASSERT_EQ(::truncate(root_.at(kPath).c_str(), static_cast<off_t>(size)), 0);
    EXPECT_EQ(load("a"), "(missing)") << size;
    EXPECT_THAT(root_.log(), HasSubstr("File too large")) << size;
    save("b", "2");
    EXPECT_EQ(std::filesystem::file_size(root_.at(kPath)), size);
    EXPECT_THAT(root_.log(), HasSubstr("would be lost")) << size;
  }
}

TEST_F(CfgWrapperTest, ReadsAndReplacesAFileFromTheFarFuture) {
  save("a", "1");
  root_.setDate(kPath, support::kBeyond2038);
  EXPECT_EQ(load("a"), "1");
  save("b", "2");
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(load("b"), "2");
  EXPECT_EQ(root_.log(), "");
}

TEST_F(CfgWrapperTest, DoesNotWriteAFileThatIsTooLargeToRead) {
  save("a", "1");
  save("b", std::string(16u << 20, 'x'));
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(load("b"), "(missing)");
  EXPECT_THAT(root_.log(), HasSubstr("larger than 16 MiB"));
}

TEST_F(CfgWrapperTest, SaysSoWhenAFolderCannotBeMade) {
  root_.put("/mnt", "in the way");
  save("a", "1");
  EXPECT_THAT(root_.log(), HasSubstr("Cannot save " + root_.at(kPath)));
  EXPECT_EQ(root_.contentOf("/mnt"), "in the way");
}

TEST_F(CfgWrapperTest, TakesOtherSpellingsOfOnePathForTheSameFile) {
  {
    CfgWrapper config("/mnt/ext1/x/../system/./a.cfg", CfgWrapper::Write);
    WriteSecret(config.handle, "a", "1");
    config.saveAndClose();
  }
  const CfgWrapper config("mnt//ext1/system/a.cfg", CfgWrapper::Read);
  EXPECT_EQ(std::string(config.read<CfgSecret>("a", CfgSecret())), "1");
}

TEST_F(CfgWrapperTest, NeverLeavesTheRootFolder) {
  CfgWrapper config("/../../outside.cfg", CfgWrapper::Write);
  WriteString(config.handle, "a", "1");
  config.saveAndClose();
  EXPECT_TRUE(std::filesystem::exists(root_.at("/outside.cfg")));
}

TEST_F(CfgWrapperTest, LivesBelowTheStateFolderWithoutARoot) {
  const TemporaryFolder state;
  const ScopedSetting noRoot("ORVANE_ROOT", "");
  const ScopedSetting xdg("XDG_STATE_HOME", state.path());
  save("a", "1");
  EXPECT_TRUE(std::filesystem::exists(state.path() + "/orvane" + kPath));
}

TEST_F(CfgWrapperTest, LosesNothingBetweenThreads) {
  const auto write = [](const std::string& key) {
    for (int i = 0; i <= 100; ++i) {
      save(key, std::to_string(i));
    }
  };
  std::thread one(write, "one");
  std::thread two(write, "two");
  one.join();
  two.join();
  EXPECT_EQ(load("one"), "100");
  EXPECT_EQ(load("two"), "100");
}
