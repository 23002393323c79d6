#include <ov_sdk.h>

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"
#include "tests/support/TemporaryRoot.h"

using support::passesInNewProcess;
using support::TemporaryRoot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

const char kFolder[] = "/mnt/ext1/system/config";
const char kPath[] = "/mnt/ext1/system/config/device.cfg";

}  // namespace

// The identity is read once per process, so each test starts new processes.
class HostIdentityTest : public testing::Test {
 protected:
  std::string keptSerialNumber() const {
    const std::string content = root_.contentOf(kPath);
    const std::string start = "\nserialNumber=";
    const std::size_t begin = content.find(start);
    return begin == std::string::npos
               ? std::string()
               : content.substr(begin + start.size(),
                                content.find('\n', begin + 1) - begin - start.size());
  }

  TemporaryRoot root_;
};

TEST_F(HostIdentityTest, IsBelievableByDefault) {
  EXPECT_TRUE(passesInNewProcess([] {
    EXPECT_STREQ(GetDeviceModel(), "QX417");
    EXPECT_STREQ(GetSoftwareVersion(), "3.2.105");
    EXPECT_EQ(ScreenWidth(), 1200);
    EXPECT_EQ(ScreenHeight(), 1600);
    EXPECT_THAT(GetSerialNumber(), MatchesRegex("[A-Z0-9]{16}"));
  }));
  EXPECT_EQ(root_.contentOf(kPath),
            "# Settings of the device, one key=value per line.\n"
            "firmware=3.2.105\nmodel=QX417\nscreenHeight=1600\n"
            "screenWidth=1200\nserialNumber=" +
                keptSerialNumber() + "\n");
  EXPECT_EQ(root_.log(), "");
}

TEST_F(HostIdentityTest, IsTheOneInTheFile) {
  const std::string content =
      "model=Z9\nfirmware=1.0\nscreenWidth=600\nscreenHeight=800\nserialNumber=S1\n";
  root_.put(kPath, content);
  EXPECT_TRUE(passesInNewProcess([] {
    EXPECT_STREQ(GetDeviceModel(), "Z9");
    EXPECT_STREQ(GetSoftwareVersion(), "1.0");
    EXPECT_EQ(ScreenWidth(), 600);
    EXPECT_EQ(ScreenHeight(), 800);
    EXPECT_STREQ(GetSerialNumber(), "S1");
  }));
  EXPECT_EQ(root_.contentOf(kPath), content);
}

TEST_F(HostIdentityTest, CompletesAFileThatLacksAPart) {
  root_.put(kPath, "model=Z9\nserialNumber=S1\n");
  EXPECT_TRUE(passesInNewProcess([] {
    EXPECT_STREQ(GetDeviceModel(), "Z9");
    EXPECT_STREQ(GetSerialNumber(), "S1");
    EXPECT_EQ(ScreenWidth(), 1200);
  }));
  EXPECT_THAT(root_.contentOf(kPath), HasSubstr("firmware=3.2.105\nmodel=Z9\n"));
}

TEST_F(HostIdentityTest, MakesTheSerialNumberOnce) {
  EXPECT_TRUE(passesInNewProcess([] { GetSerialNumber(); }));
  const std::string first = keptSerialNumber();
  EXPECT_TRUE(passesInNewProcess([&] { EXPECT_EQ(GetSerialNumber(), first); }));
  EXPECT_EQ(keptSerialNumber(), first);
}

TEST_F(HostIdentityTest, MakesAnotherSerialNumberForAnotherRoot) {
  EXPECT_TRUE(passesInNewProcess([] { GetSerialNumber(); }));
  const TemporaryRoot other;
  EXPECT_TRUE(passesInNewProcess([this] { EXPECT_NE(GetSerialNumber(), keptSerialNumber()); }));
}

TEST_F(HostIdentityTest, IsTheSameForProcessesThatMakeItAtOnce) {
  std::vector<pid_t> processes;
  for (int number = 0; number < 8; ++number) {
    processes.push_back(::fork());
    if (processes.back() == 0) {
      const std::string made = GetSerialNumber();
      ::usleep(200000);
      ::_exit(made == keptSerialNumber() ? 0 : 1);
    }
  }
  for (const pid_t process : processes) {
    int status = -1;
    ::waitpid(process, &status, 0);
    EXPECT_EQ(status, 0);
  }
}

TEST_F(HostIdentityTest, StaysTheSameWhileTheProcessLives) {
  EXPECT_TRUE(passesInNewProcess([this] {
    const char* model = GetDeviceModel();
    root_.put(kPath, "model=changed\n");
    EXPECT_STREQ(model, "QX417");
    EXPECT_EQ(GetDeviceModel(), model);
  }));
}

TEST_F(HostIdentityTest, TouchesItsOwnFileOnly) {
  EXPECT_TRUE(passesInNewProcess([] { ScreenWidth(); }));
  EXPECT_THAT(root_.namesIn(kFolder), ElementsAre(".device.cfg.lock", "device.cfg"));
  EXPECT_THAT(root_.namesIn(""), ElementsAre("mnt"));
  EXPECT_THAT(root_.namesIn("/mnt"), ElementsAre("ext1"));
}

TEST_F(HostIdentityTest, TakesTheDefaultForAScreenWithoutASize) {
  root_.put(kPath, "screenWidth=wide\nscreenHeight=-1\n");
  EXPECT_TRUE(passesInNewProcess([] {
    EXPECT_EQ(ScreenWidth(), 1200);
    EXPECT_EQ(ScreenHeight(), 1600);
  }));
  EXPECT_THAT(root_.log(), HasSubstr("screenWidth is not an integer"));
}

TEST_F(HostIdentityTest, IsGivenOutAlsoWhenItCannotBeKept) {
  root_.put("/mnt", "in the way");
  EXPECT_TRUE(passesInNewProcess([] {
    EXPECT_STREQ(GetDeviceModel(), "QX417");
    EXPECT_THAT(GetSerialNumber(), MatchesRegex("[A-Z0-9]{16}"));
  }));
  EXPECT_THAT(root_.log(), HasSubstr("Cannot save"));
}
