// The example's definitions of the platform but its HTTP: what the platform's headers promise of
// them.

#include <ov_sdk.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>
#include <orvane/utilities/SerializationUtils.h>
#include <orvane/utilities/Str.h>

#include "tests/platform/host/TemporaryRoot.h"

using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;
using orvane::utilities::SerializationUtils;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const char kPath[] = "/mnt/ext1/system/config/test.cfg";
const char kTask[] = "/ombrel/bin/task.app";

class FirmwareDefinitionsTest : public ::testing::Test {
 protected:
  std::string at(const std::string& path) const { return folder_.path() + path; }

  std::string contentOf(const std::string& path) const {
    std::ifstream in(at(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  void put(const std::string& path, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(at(path)).parent_path());
    std::ofstream(at(path), std::ios::binary) << content;
  }

  static void save(const std::string& key, const std::string& text) {
    CfgWrapper config(kPath, CfgWrapper::Write);
    WriteString(config.handle, key.c_str(), text.c_str());
    config.saveAndClose();
  }

  static void saveSecret(const std::string& key, const std::string& text) {
    CfgWrapper config(kPath, CfgWrapper::Write);
    WriteSecret(config.handle, key.c_str(), text.c_str());
    config.saveAndClose();
  }

  static std::string load(const std::string& key) {
    return CfgWrapper(kPath, CfgWrapper::Read).read<std::string>(key, "(default)");
  }

  static std::string loadSecret(const std::string& key) {
    return CfgWrapper(kPath, CfgWrapper::Read).read<CfgSecret>(key, CfgSecret("(default)"));
  }

 private:
  const host_tests::TemporaryFolder folder_;
  const host_tests::ScopedSetting root_{"FIRMWARE_ROOT", folder_.path()};
};

}  // namespace

TEST_F(FirmwareDefinitionsTest, ConfigurationsKeepWhatWasWritten) {
  std::string odd;
  for (int byte = 1; byte < 256; ++byte) {
    odd += static_cast<char>(byte);
  }
  CfgWrapper config(kPath, CfgWrapper::Write);
  WriteInt(config.handle, "number", -7);
  WriteString(config.handle, odd.c_str(), odd.c_str());
  WriteString(config.handle, "empty", "");
  WriteSecret(config.handle, "secret", odd.c_str());
  EXPECT_STREQ(ReadString(config.handle, odd.c_str(), ""), odd.c_str());
  config.saveAndClose();

  const CfgWrapper again(kPath, CfgWrapper::Read);
  EXPECT_THAT(again.keys(), ElementsAre(odd, "empty", "number", "secret"));
  EXPECT_EQ(again.read<int>("number", 0), -7);
  EXPECT_EQ(again.read<std::string>(odd, ""), odd);
  EXPECT_EQ(again.readIfExists<std::string>("empty").value(), "");
  EXPECT_EQ(std::string(again.read<CfgSecret>("secret", CfgSecret())), odd);
}

TEST_F(FirmwareDefinitionsTest, AMissingFileIsEmptyAndAnAbsentKeyReadsAsItsDefault) {
  const CfgWrapper config(kPath, CfgWrapper::Read);
  EXPECT_TRUE(config.keys().empty());
  EXPECT_EQ(ReadInt(config.handle, "x", 7), 7);
  EXPECT_STREQ(ReadString(config.handle, "x", "default"), "default");
  EXPECT_STREQ(ReadSecret(config.handle, "x", "default"), "default");
  EXPECT_FALSE(std::filesystem::exists(at(kPath)));
}

TEST_F(FirmwareDefinitionsTest, ASaveKeepsTheOtherKeysAndNothingElseWrites) {
  save("a", "1");
  save("b", "2");
  EXPECT_EQ(load("a"), "1");
  {
    CfgWrapper closed(kPath, CfgWrapper::Write);
    WriteString(closed.handle, "a", "closed");
    closed.closeNoSave();
    const CfgWrapper left(kPath, CfgWrapper::Write);
    WriteString(left.handle, "a", "left");
    CfgWrapper opened(kPath, CfgWrapper::Read);
    WriteString(opened.handle, "a", "opened to read");
    opened.save();
  }
  EXPECT_EQ(load("a"), "1");
  EXPECT_EQ(load("b"), "2");
}

TEST_F(FirmwareDefinitionsTest, AFileThatCannotBeWrittenStaysAsItIs) {
  save("a", "1");
  std::filesystem::create_directories(at("/mnt/other/test.cfg/folder"));
  CfgWrapper config("/mnt/other/test.cfg", CfgWrapper::Write);
  WriteString(config.handle, "a", "2");
  config.saveAndClose();
  EXPECT_TRUE(std::filesystem::is_directory(at("/mnt/other/test.cfg/folder")));
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(at("/mnt/other"))) {
    files += entry.exists() ? 1 : 0;
  }
  EXPECT_EQ(files, 1u);
}

TEST_F(FirmwareDefinitionsTest, ASecretIsNotShownAndNotReadAsAText) {
  saveSecret("token", "s3cret");
  EXPECT_THAT(contentOf(kPath), Not(HasSubstr("s3cret")));
  struct stat status = {};
  for (const char* path : {kPath, "/mnt/secure/firmware.key"}) {
    ASSERT_EQ(::stat(at(path).c_str(), &status), 0) << path;
    EXPECT_EQ(status.st_mode & 0777u, 0600u) << path;
  }
  EXPECT_EQ(loadSecret("token"), "s3cret");
  EXPECT_EQ(load("token"), "");  // readIfExists() finds the key, and the SDK's default is empty
}

TEST_F(FirmwareDefinitionsTest, AChangedOrForeignSecretReadsAsItsDefault) {
  saveSecret("token", "s3cret");
  const std::string whole = contentOf(kPath);
  for (const std::string& damaged :
       {whole.substr(0, whole.size() - 2) + (whole[whole.size() - 2] == '0' ? "1\n" : "0\n"),
        whole.substr(0, 20) + "\n", std::string("token=!\n"), std::string("token=!xyz\n")}) {
    put(kPath, damaged);
    EXPECT_EQ(loadSecret("token"), "") << damaged;
  }
  put(kPath, whole);
  EXPECT_EQ(loadSecret("token"), "s3cret");
  put("/mnt/secure/firmware.key", std::string(32, 'k'));
  EXPECT_EQ(loadSecret("token"), "");
}

TEST_F(FirmwareDefinitionsTest, WithoutAKeyNoSecretIsWrittenAndNothingSaved) {
  put("/mnt/secure/firmware.key", "short");
  saveSecret("token", "s3cret");
  EXPECT_FALSE(std::filesystem::exists(at(kPath)));
}

TEST_F(FirmwareDefinitionsTest, SettingsGiveTheIdentity) {
  put("/mnt/ext1/system/config/device.cfg", "model=M1\nsoftwareVersion=V1\nserialNumber=S1\n");
  EXPECT_STREQ(GetDeviceModel(), "M1");
  EXPECT_STREQ(GetSoftwareVersion(), "V1");
  EXPECT_STREQ(GetSerialNumber(), "S1");
  EXPECT_EQ(ScreenWidth(), 1072);
  EXPECT_EQ(ScreenHeight(), 1448);
}

TEST_F(FirmwareDefinitionsTest, ALogLineIsOneLineOfTheLevelsThatAreWanted) {
  ::testing::internal::CaptureStderr();
  ov_print_log2(2, "File.cpp", 7, "function", "a %d\nb %s", 1, "c");
  ov_print_log2(5, "File.cpp", 7, "function", "information");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "2 File.cpp:7 function: a 1 b c\n");
}

TEST_F(FirmwareDefinitionsTest, ATaskIsFoundAsLongAsItRuns) {
  std::filesystem::create_directories(at("/ombrel/bin"));
  std::filesystem::copy_file("/bin/sleep", at(kTask));
  char path[] = "/ombrel/bin/task.app";
  char seconds[] = "60";
  char* arguments[] = {path, seconds, nullptr};
  EXPECT_LE(FindTaskByAppName(kTask), 0);
  const int task = NewTask(kTask, arguments, "task.app", "task.app", nullptr, 37);
  ASSERT_GT(task, 0);
  EXPECT_EQ(FindTaskByAppName(kTask), task);
  EXPECT_EQ(::getsid(task), task);
  ASSERT_EQ(::kill(task, SIGKILL), 0);
  while (FindTaskByAppName(kTask) > 0 || ::kill(task, 0) == 0) {  // reaped, too
    ::usleep(1000);
  }
}

TEST_F(FirmwareDefinitionsTest, ATaskThatCannotBeStartedSaysSo) {
  char path[] = "/missing";
  char* arguments[] = {path, nullptr};
  EXPECT_LE(NewTask(path, arguments, "missing", "missing", nullptr, 37), 0);
}

TEST_F(FirmwareDefinitionsTest, AStringComesBackFromAStreamAloneAndWhole) {
  std::ostringstream out;
  for (const std::string& text : {std::string("\0\xff\n", 3), std::string(), std::string("x")}) {
    EXPECT_EQ(SerializationUtils::SerializeString(text, out), 0);
  }
  std::istringstream in(out.str() + "\x05\1\1\1half");
  std::string text;
  for (const std::string& expected :
       {std::string("\0\xff\n", 3), std::string(), std::string("x")}) {
    EXPECT_EQ(SerializationUtils::DeserializeString(in, &text), 0);
    EXPECT_EQ(text, expected);
  }
  EXPECT_NE(SerializationUtils::DeserializeString(in, &text), 0);
  EXPECT_EQ(text, "x");
  EXPECT_TRUE(in.eof());
  std::istringstream unread("x");
  unread.setstate(std::ios::failbit);
  EXPECT_NE(SerializationUtils::DeserializeString(unread, &text), 0);
  EXPECT_TRUE(unread.eof());
  EXPECT_NE(SerializationUtils::SerializeString("x", (out.setstate(std::ios::badbit), out)), 0);
}

TEST_F(FirmwareDefinitionsTest, ATextIsTrimmed) {
  using orvane::utilities::Str;
  EXPECT_EQ(Str::trim(" \t\r\n\v\fa b\n"), "a b");
  EXPECT_EQ(Str::trim(" \n"), "");
  EXPECT_EQ(Str::trim("xxaxx", "x"), "a");
}
