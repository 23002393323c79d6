// What only the example's implementation does, its HTTP aside. What every implementation has to do,
// graphql-platform-check looks for.

#include <ov_sdk.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orvane/utilities/CfgWrapper.h>

#include "tests/support/TemporaryRoot.h"

using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const char kPath[] = "/mnt/ext1/system/config/test.cfg";
const char kTask[] = "/ombrel/bin/task.app";

class FirmwareDefinitionsTest : public ::testing::Test {
 protected:
  // The settings are read once in a process: they are the same for every test.
  FirmwareDefinitionsTest() {
    put("/mnt/ext1/system/config/device.cfg", "model=M1\nsoftwareVersion=V1\nserialNumber=S1\n");
  }

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
  const support::TemporaryFolder folder_;
  const support::ScopedSetting root_{"FIRMWARE_ROOT", folder_.path()};
};

}  // namespace

TEST_F(FirmwareDefinitionsTest, AnyKeyComesBack) {
  std::string odd;
  for (int byte = 1; byte < 256; ++byte) {
    odd += static_cast<char>(byte);
  }
  save(odd, "text");
  EXPECT_EQ(load(odd), "text");
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

TEST_F(FirmwareDefinitionsTest, AnEndedTaskIsReaped) {
  std::filesystem::create_directories(at("/ombrel/bin"));
  std::filesystem::copy_file("/bin/sleep", at(kTask));
  char path[] = "/ombrel/bin/task.app";
  char seconds[] = "60";
  char* arguments[] = {path, seconds, nullptr};
  const int task = NewTask(kTask, arguments, "task.app", "task.app", nullptr, 37);
  ASSERT_GT(task, 0);
  ASSERT_EQ(::kill(task, SIGKILL), 0);
  while (::kill(task, 0) == 0) {
    FindTaskByAppName(kTask);  // waits for ended tasks, too
    ::usleep(1000);
  }
}
