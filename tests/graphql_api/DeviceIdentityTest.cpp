// The identity of the device, which a process reads once. Each test starts a new process, and only
// these processes build headers.

#include "graphql_api/GraphQLHeader.h"

#include "tests/support/NewProcess.h"
#include "tests/support/PlatformTest.h"

using graphql::graphQLHeaders;
using graphql::GraphQLStorageApi;
using support::passesInNewProcess;
using ::testing::StartsWith;

namespace {

class DeviceIdentityTest : public PlatformTest {
 protected:
  using Headers = std::map<std::string, std::string>;
};

}  // namespace

TEST_F(DeviceIdentityTest, TheIdentityIsEmptyUntilTheFirstHeaderBuild) {
  EXPECT_TRUE(passesInNewProcess([this] {
    makeStorage();
    EXPECT_EQ(deviceModel + softwareVersion + serialNumber + userAgent, "");
    graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(deviceModel, "eink 417");
    EXPECT_EQ(softwareVersion, "3.2.105");
    EXPECT_EQ(serialNumber, "SN0001");
    EXPECT_EQ(userAgent, "Orvane Reader/417(screen 1200x1600; FW 3.2.105)");
  }));
}

TEST_F(DeviceIdentityTest, TheDeviceIsAskedOnceOnly) {
  EXPECT_TRUE(passesInNewProcess([] {
    const Headers first = graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(platform().calls.size(), 5U);
    platform().device = {"ZZ9", "9.9", "SN9", 1, 2, 3};
    platform().calls.clear();
    EXPECT_EQ(graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None), first);
    EXPECT_TRUE(platform().calls.empty());
  }));
}

TEST_F(DeviceIdentityTest, AModelWithoutADigitHasNoNumber) {
  EXPECT_TRUE(passesInNewProcess([] {
    platform().device.model = "Prototype";
    const Headers sent = graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(deviceModel, "eink ");
    EXPECT_THAT(sent.at("User-Agent"), StartsWith("Orvane Reader/(screen "));
  }));
}

TEST_F(DeviceIdentityTest, TheModelNumberIsTheTextFromTheFirstDigitOn) {
  EXPECT_TRUE(passesInNewProcess([] {
    platform().device.model = "A 7x Plus";
    graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(deviceModel, "eink 7x Plus");
  }));
}

TEST_F(DeviceIdentityTest, ScreenSizesAreSignedDecimals) {
  EXPECT_TRUE(passesInNewProcess([] {
    platform().device.screenWidth = -1;
    platform().device.screenHeight = 1234567;
    graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None);
    EXPECT_EQ(userAgent, "Orvane Reader/417(screen -1x1234567; FW 3.2.105)");
  }));
}

TEST_F(DeviceIdentityTest, ANullTextOfTheDeviceThrows) {
  for (const char* call : {"GetDeviceModel", "GetSoftwareVersion", "GetSerialNumber"}) {
    EXPECT_TRUE(passesInNewProcess([&] {
      platform().failAt(call);
      EXPECT_THROW(graphQLHeaders(nullptr, StoreInfo(), GraphQLStorageApi::None), std::logic_error);
    })) << call;
  }
}
