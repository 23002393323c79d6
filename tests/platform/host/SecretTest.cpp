#include <ov_sdk.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>

#include "platform/host/SecretBox.h"
#include "tests/support/TemporaryRoot.h"

using orvane::utilities::CfgWrapper;
using support::ScopedSetting;
using support::TemporaryFolder;
using support::TemporaryRoot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

const char kPath[] = "/mnt/ext1/a.cfg";
const char kOtherPath[] = "/mnt/ext1/b.cfg";
const char kKeyFolder[] = "/mnt/secure";
const char kKeyPath[] = "/mnt/secure/secret.key";

}  // namespace

class SecretTest : public testing::Test {
 protected:
  static void save(const char* key, const std::string& clearText, const char* path = kPath) {
    CfgWrapper config(path, CfgWrapper::Write);
    WriteSecret(config.handle, key, clearText.c_str());
    config.saveAndClose();
  }

  static std::string load(const char* key, const char* path = kPath) {
    return ReadSecret(CfgWrapper(path, CfgWrapper::Read).handle, key, "(default)");
  }

  // The text of `key` in the file.
  std::string sealed(const std::string& key) const {
    const std::string content = root_.contentOf(kPath);
    const std::size_t begin = content.find("\n" + key + "=") + key.size() + 2;
    return content.substr(begin, content.find('\n', begin) - begin);
  }

  void expectNotOpened(const char* key, const char* path = kPath) const {
    root_.clearLog();
    EXPECT_EQ(load(key, path), "(default)");
    EXPECT_THAT(root_.log(), HasSubstr("the secret " + std::string(key) + " cannot be decrypted"));
    EXPECT_THAT(root_.log(), HasSubstr(root_.at(path)));
  }

  void expectNeitherReadNorKept(const std::string& fault) const {
    const std::string before = root_.contentOf(kPath);
    root_.clearLog();
    EXPECT_EQ(load("token"), "(default)");
    EXPECT_THAT(root_.log(), HasSubstr(fault));
    root_.clearLog();
    CfgWrapper config(kPath, CfgWrapper::Write);
    WriteString(config.handle, "plain", "new");
    WriteSecret(config.handle, "token", "new clear text");
    config.saveAndClose();
    EXPECT_EQ(root_.contentOf(kPath), before);
    EXPECT_THAT(root_.log(), HasSubstr(fault));
    EXPECT_THAT(root_.log(), HasSubstr("Cannot save " + root_.at(kPath)));
  }

  TemporaryRoot root_;
};

TEST_F(SecretTest, ComesBackByteForByte) {
  for (const std::string text : {"", "a", " a=b\n\\", "\xff\xfe", "secret:v1:"}) {
    save("token", text);
    EXPECT_EQ(load("token"), text);
  }
  const std::string large(100000, 'x');
  save("token", large);
  EXPECT_EQ(load("token"), large);
  EXPECT_EQ(root_.log(), "");
}

TEST_F(SecretTest, IsNotShownByTheFile) {
  save("token", "clear text");
  EXPECT_THAT(root_.contentOf(kPath), Not(HasSubstr("clear text")));
  EXPECT_THAT(sealed("token"), MatchesRegex("secret:v1:[-_A-Za-z0-9]{67}"));
}

TEST_F(SecretTest, IsSealedAnewEachTimeThatItChanges) {
  save("token", "same");
  const std::string first = sealed("token");
  save("token", "other");
  save("token", "same");
  EXPECT_NE(sealed("token"), first);
}

TEST_F(SecretTest, LooksDifferentUnderEachKeyAndInEachFile) {
  save("token", "same");
  save("other", "same");
  save("token", "same", kOtherPath);
  EXPECT_NE(sealed("token"), sealed("other"));
  EXPECT_THAT(root_.contentOf(kOtherPath), Not(HasSubstr(sealed("token"))));
}

TEST_F(SecretTest, ThatIsTheSameKeepsItsSealedText) {
  save("token", "same");
  const std::string first = sealed("token");
  save("token", "same");
  EXPECT_EQ(sealed("token"), first);
}

TEST_F(SecretTest, ThatWasTamperedWithIsSealedAnew) {
  save("token", "same");
  std::string content = root_.contentOf(kPath);
  content[content.find("secret:v1:") + 20] ^= 1;
  root_.put(kPath, content);
  save("token", "same");
  EXPECT_EQ(load("token"), "same");
}

TEST_F(SecretTest, ReadsAsTheDefaultWhenAnyByteWasChanged) {
  save("token", "clear text");
  const std::string content = root_.contentOf(kPath);
  const std::size_t begin = content.find("secret:");
  for (std::size_t at = begin + 7; at + 1 < content.size(); ++at) {
    std::string changed = content;
    changed[at] = changed[at] == 'A' ? 'B' : 'A';
    root_.put(kPath, changed);
    expectNotOpened("token");
  }
}

TEST_F(SecretTest, ReadsAsTheDefaultWhenItWasCutShort) {
  save("token", "clear text");
  const std::string whole = sealed("token");
  for (std::size_t length = 7; length < whole.size(); ++length) {
    root_.put(kPath, "token=" + whole.substr(0, length) + "\n");
    expectNotOpened("token");
  }
}

TEST_F(SecretTest, ReadsAsTheDefaultUnderAnotherKey) {
  save("token", "clear text");
  root_.put(kPath, "other=" + sealed("token") + "\n");
  expectNotOpened("other");
}

TEST_F(SecretTest, ReadsAsTheDefaultInAnotherFile) {
  save("token", "clear text");
  root_.put(kOtherPath, root_.contentOf(kPath));
  expectNotOpened("token", kOtherPath);
}

TEST_F(SecretTest, ReadsAsTheDefaultOnAnotherMachine) {
  save("token", "clear text");
  std::filesystem::remove(root_.at(kKeyPath));
  save("other", "makes a new key");
  expectNotOpened("token");
  save("token", "new");
  EXPECT_EQ(load("token"), "new");
}

// With a separator that may occur in paths and keys, these two pairs would be the same.
TEST_F(SecretTest, FilesAndKeysDoNotRunIntoEachOther) {
  for (const std::string between : {"", "/", ":", "="}) {
    const std::string path = "/a" + between + "b";
    save("c", "clear text", path.c_str());
    root_.put("/a", root_.contentOf(path).replace(root_.contentOf(path).find("\nc="), 2,
                                                  "\nb" + between + "c"));
    EXPECT_EQ(load(("b" + between + "c").c_str(), "/a"), "(default)");
    std::filesystem::remove_all(root_.at(path));
    std::filesystem::remove_all(root_.at("/a"));
  }
}

TEST_F(SecretTest, OpensWhenTheRootFolderWasMoved) {
  save("token", "clear text");
  const TemporaryFolder other;
  std::filesystem::copy(root_.path(), other.path() + "/moved",
                        std::filesystem::copy_options::recursive);
  const ScopedSetting moved("ORVANE_ROOT", other.path() + "/moved");
  EXPECT_EQ(load("token"), "clear text");
}

TEST_F(SecretTest, APlainTextIsNoSecretAndASecretNoPlainText) {
  save("token", "clear text");
  {
    CfgWrapper config(kPath, CfgWrapper::Write);
    WriteString(config.handle, "copied", sealed("token").c_str());
    WriteString(config.handle, "plain", "x");
    config.saveAndClose();
  }
  EXPECT_EQ(load("plain"), "(default)");
  EXPECT_THAT(root_.log(), HasSubstr("plain is a text, not a secret"));
  root_.clearLog();
  EXPECT_EQ(load("copied"), "(default)");
  const CfgWrapper config(kPath, CfgWrapper::Read);
  EXPECT_EQ(ReadString(config.handle, "copied", ""), sealed("token"));
  EXPECT_STREQ(ReadString(config.handle, "token", "(default)"), "(default)");
  EXPECT_THAT(root_.log(), HasSubstr("token is a secret, not a text"));
  EXPECT_EQ(ReadInt(config.handle, "token", 7), 7);
}

TEST_F(SecretTest, TheKeyIsMadeOnceForItsOwnerOnly) {
  ::umask(0);
  save("token", "a");
  const std::string key = root_.contentOf(kKeyPath);
  EXPECT_EQ(key.size(), 32u);
  EXPECT_EQ(root_.modeOf(kKeyPath), 0600u);
  EXPECT_EQ(root_.modeOf(kKeyFolder), 0700u);
  save("token", "b");
  EXPECT_EQ(root_.contentOf(kKeyPath), key);
  EXPECT_THAT(root_.namesIn(kKeyFolder), ElementsAre(".secret.key.lock", "secret.key"));
}

TEST_F(SecretTest, ReadingMakesNoKey) {
  root_.put(kPath, "token=secret:v1:AAAA\n");
  EXPECT_EQ(load("token"), "(default)");
  EXPECT_FALSE(std::filesystem::exists(root_.at(kKeyFolder)));
  EXPECT_THAT(root_.log(), HasSubstr("Cannot read the key file " + root_.at(kKeyPath)));
}

TEST_F(SecretTest, EachRootHasAKeyOfItsOwn) {
  save("token", "a");
  const TemporaryRoot other;
  save("token", "b");
  EXPECT_NE(other.contentOf(kKeyPath), root_.contentOf(kKeyPath));
}

TEST_F(SecretTest, AKeyOfTheWrongSizeIsNotUsed) {
  save("token", "a");
  for (const std::size_t size : {0u, 31u, 33u}) {
    root_.put(kKeyPath, std::string(size, 'k'));
    expectNeitherReadNorKept("is not 32 bytes long");
  }
}

TEST_F(SecretTest, AKeyThatOthersCanOpenIsNotUsed) {
  save("token", "a");
  for (const unsigned int mode : {0640u, 0620u, 0604u, 0602u}) {
    ASSERT_EQ(::chmod(root_.at(kKeyPath).c_str(), mode), 0);
    expectNeitherReadNorKept("is accessible to other users");
  }
}

TEST_F(SecretTest, AKeyBehindALinkIsNotUsed) {
  save("token", "a");
  std::filesystem::rename(root_.at(kKeyPath), root_.at("/mnt/key"));
  std::filesystem::create_symlink(root_.at("/mnt/key"), root_.at(kKeyPath));
  expectNeitherReadNorKept("Cannot read the key file");
}

TEST_F(SecretTest, AFolderInPlaceOfTheKeyIsNotUsed) {
  std::filesystem::create_directories(root_.at(kKeyPath));
  root_.put(kPath, "token=secret:v1:AAAA\n");
  expectNeitherReadNorKept("is not a regular file");
}

// Only root can change the owner of a file. Otherwise the test links a file of root.
TEST_F(SecretTest, AKeyOfAnotherUserIsNotUsed) {
  save("token", "a");
  if (::chown(root_.at(kKeyPath).c_str(), 12345, 12345) == 0) {
    expectNeitherReadNorKept("belongs to another user");
  } else {
    std::filesystem::remove(root_.at(kKeyPath));
    std::error_code linked;
    std::filesystem::create_hard_link("/etc/hostname", root_.at(kKeyPath), linked);
    if (linked) {
      std::filesystem::create_symlink("/etc/hostname", root_.at(kKeyPath));
    }
    expectNeitherReadNorKept(linked ? "Cannot read the key file" : "belongs to another user");
  }
}

TEST_F(SecretTest, AKeyFromTheFarFutureIsUsed) {
  save("token", "a");
  root_.setDate(kKeyPath, support::kBeyond2038);
  EXPECT_EQ(load("token"), "a");
  EXPECT_EQ(root_.log(), "");
}

TEST_F(SecretTest, AnExchangedKeyIsSeen) {
  save("token", "a");
  EXPECT_EQ(load("token"), "a");
  std::filesystem::rename(root_.at(kKeyPath), root_.at("/mnt/kept"));
  root_.put(kKeyPath, std::string(32, 'k'));
  expectNotOpened("token");
  std::filesystem::rename(root_.at("/mnt/kept"), root_.at(kKeyPath));
  EXPECT_EQ(load("token"), "a");
}

TEST_F(SecretTest, ProcessesThatMakeTheKeyAtOnceGetTheSame) {
  for (int round = 0; round < 20; ++round) {
    const TemporaryRoot root;
    std::vector<pid_t> processes;
    for (int number = 0; number < 8; ++number) {
      processes.push_back(::fork());
      if (processes.back() == 0) {
        save("token", "a", ("/" + std::to_string(number)).c_str());
        ::_exit(0);
      }
    }
    for (const pid_t process : processes) {
      ::waitpid(process, nullptr, 0);
    }
    for (int number = 0; number < 8; ++number) {
      EXPECT_EQ(load("token", ("/" + std::to_string(number)).c_str()), "a");
    }
    EXPECT_EQ(root.log(), "");
  }
}

TEST_F(SecretTest, WhatADeadMakerOfTheKeyLeftIsRemoved) {
  root_.put(std::string(kKeyFolder) + "/.secret.key.new", "x");
  save("token", "a");
  EXPECT_THAT(root_.namesIn(kKeyFolder), ElementsAre(".secret.key.lock", "secret.key"));
}

TEST(SecretWipeTest, EmptiesTheText) {
  std::string text = "clear text";
  host::wipe(&text);
  EXPECT_EQ(text, "");
}
