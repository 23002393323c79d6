// What only the example's HTTP does; graphql-platform-check looks for the rest. Settings are read
// once in a process.

#include <orvane/utilities/HttpRequestRunner.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/HttpsServer.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;
using ::testing::HasSubstr;

namespace {

class FirmwareHttpTest : public ::testing::Test {
 protected:
  // One server as long as the process lives, which keeps the settings.
  static void SetUpTestSuite() {
    if (server_ != nullptr) {
      return;
    }
    server_ = std::make_unique<support::HttpsServer>();
    const std::string folder = server_->folder() + "/mnt/ext1/system/config";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/device.cfg")
        << "caFile=" << server_->certificateFile()
        << "\nconnectTo=::127.0.0.1:" << server_->http1Port() << "\n";
    ::setenv("FIRMWARE_ROOT", server_->folder().c_str(), 1);
    ::setenv("https_proxy", "http://127.0.0.1:1", 1);
  }

  static std::string url(const std::string& path) {
    return std::string("https://") + support::HttpsServer::kHost + path;
  }

  int perform(const HttpRequest& request, unsigned int limit = 60) {
    std::vector<char> bytes = {'o', 'l', 'd'};
    status = -1;
    const int result = HttpRequestRunner().PerformRequest(request, &status, &bytes, limit);
    body.assign(bytes.begin(), bytes.end());
    return result;
  }

  int get(const std::string& path) { return perform(HttpRequest("GET", url(path))); }

  static inline std::unique_ptr<support::HttpsServer> server_;
  long status = -1;
  std::string body;
};

}  // namespace

TEST_F(FirmwareHttpTest, ReadsAsACurlCommand) {
  HttpRequest request("POST", url("/echo"));
  request.AddHeader("X-Second", "2");
  request.AddHeader("X-First", "1");
  request.AddPostData("it's");
  EXPECT_THAT(request.toCurlRequest(), HasSubstr("-H 'X-Second: 2' -H 'X-First: 1'"));
  EXPECT_THAT(request.toCurlRequest(), HasSubstr("'it'\\''s'"));
}

TEST_F(FirmwareHttpTest, TakesNoProxyFromTheEnvironment) {
  EXPECT_EQ(get("/echo"), 0);
  EXPECT_EQ(status, 200);
}

TEST_F(FirmwareHttpTest, HalfAnAnswerIsNone) {
  EXPECT_NE(get("/cut"), 0);
  EXPECT_EQ(body, "");
  EXPECT_NE(get("/early-only"), 0);
  EXPECT_EQ(status, 0);
}

TEST_F(FirmwareHttpTest, AnAnswerWithoutAnEndIsGivenUp) {
  EXPECT_NE(get("/endless"), 0);
  EXPECT_EQ(body, "");
}
