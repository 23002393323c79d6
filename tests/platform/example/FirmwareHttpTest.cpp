// The example's HTTP: what the platform's headers promise of it. One program is one test: settings
// are read once in a process.

#include <orvane/utilities/HttpRequestRunner.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/host/HttpsServer.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Pair;

namespace {

using Headers = std::unordered_map<std::string, std::string>;

class FirmwareHttpTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<support::HttpsServer>();
    const std::string folder = server_->folder() + "/mnt/ext1/system/config";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/device.cfg")
        << "caFile=" << server_->certificateFile()
        << "\nconnectTo=::127.0.0.1:" << server_->http1Port() << "\n";
    ::setenv("FIRMWARE_ROOT", server_->folder().c_str(), 1);
    ::setenv("https_proxy", "http://127.0.0.1:1", 1);
  }
  static void TearDownTestSuite() { server_.reset(); }

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
  Headers headers;
};

}  // namespace

TEST_F(FirmwareHttpTest, SendsMethodHeadersInOrderAndBody) {
  HttpRequest request("POST", url("/echo"));
  request.AddHeader("X-Second", "2");
  request.AddHeader("X-First", "1");
  request.AddHeader("X-Empty", "");
  request.AddPostData("replaced");
  request.AddPostData("it's");
  EXPECT_EQ(perform(request), 0);
  EXPECT_EQ(status, 200);
  EXPECT_THAT(body, ::testing::StartsWith("POST /echo HTTP/1.1\r\n"));
  EXPECT_THAT(body, HasSubstr("X-Second: 2\r\nX-First: 1\r\nX-Empty:\r\n"));
  EXPECT_THAT(body, ::testing::EndsWith("\r\n\r\nit's"));
  EXPECT_THAT(request.toCurlRequest(), HasSubstr("-H 'X-Second: 2' -H 'X-First: 1'"));
  EXPECT_THAT(request.toCurlRequest(), HasSubstr("'it'\\''s'"));
}

TEST_F(FirmwareHttpTest, AnyStatusIsAnAnswerAndNoRedirectIsFollowed) {
  EXPECT_EQ(get("/error"), 0);
  EXPECT_EQ(status, 500);
  EXPECT_EQ(body, "sorry");
  EXPECT_EQ(get("/redirect"), 0);
  EXPECT_EQ(status, 302);
}

TEST_F(FirmwareHttpTest, HalfAnAnswerIsNone) {
  EXPECT_NE(get("/cut"), 0);
  EXPECT_EQ(body, "");
  EXPECT_NE(get("/early-only"), 0);
  EXPECT_EQ(status, 0);
}

TEST_F(FirmwareHttpTest, TheLimitEndsATransferThatGoesOn) {
  EXPECT_NE(perform(HttpRequest("GET", url("/drip")), 1), 0);
}

TEST_F(FirmwareHttpTest, AnAnswerWithoutAnEndIsGivenUp) {
  EXPECT_NE(get("/endless"), 0);
  EXPECT_EQ(body, "");
}

TEST_F(FirmwareHttpTest, ServersThatAreNotTheOneAreRefused) {
  EXPECT_EQ(perform(HttpRequest("GET", "https://other.example/echo")), 60);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(perform(HttpRequest("GET", "http://127.0.0.1/")), 1);
  EXPECT_NE(perform(HttpRequest("GET", "not an address")), 0);
}

TEST_F(FirmwareHttpTest, AHeaderDoesNotBecomeTwo) {
  HttpRequest request("GET", url("/echo"));
  request.AddHeader("X-Token", "a\r\nX-Other: b");
  EXPECT_NE(perform(request), 0);
}

TEST_F(FirmwareHttpTest, HeadersComeUnderTheirNamesInLowerCase) {
  EXPECT_EQ(HttpRequestRunner().PerformRequest(HttpRequest("GET", url("/headers")), &status,
                                               &headers, {}, {}, {}),
            0);
  EXPECT_THAT(headers, Contains(Pair("x-magento-cache-id", "abc")));
  EXPECT_THAT(headers, Contains(Pair("x-twice", ::testing::AnyOf("first", "second"))));
  EXPECT_THAT(headers, Contains(Pair("x-empty", "")));
}

TEST_F(FirmwareHttpTest, TheCallbacksPassTheBodies) {
  std::string left = "read in pieces";
  std::string written;
  std::uint64_t told = 0;
  HttpRequest request("POST", url("/echo"));
  request.AddPostData("dropped");
  const auto read = [&left](std::size_t, char* data) {
    const std::size_t length = left.copy(data, 4);
    left.erase(0, length);
    return length;
  };
  const auto write = [&written](std::size_t length, const char* data) {
    written.append(data, length);
    return length;
  };
  const auto progress = [&told](std::uint64_t received, std::uint64_t) {
    told = received;
    return true;
  };
  EXPECT_EQ(HttpRequestRunner().PerformRequest(request, &status, &headers, read, write, progress),
            0);
  EXPECT_THAT(written, ::testing::EndsWith("\r\n\r\nread in pieces"));
  EXPECT_EQ(told, written.size());
}

TEST_F(FirmwareHttpTest, EachCallbackStopsTheTransferAndItsExceptionComesBack) {
  const HttpRequest request("GET", url("/drip"));
  const auto refuse = [](std::size_t, const char*) -> std::size_t { return 0; };
  const auto stop = [](std::uint64_t, std::uint64_t) { return false; };
  const auto fail = [](std::size_t, const char*) -> std::size_t { throw std::length_error("x"); };
  HttpRequestRunner runner;
  EXPECT_NE(runner.PerformRequest(request, &status, &headers, {}, refuse, {}), 0);
  EXPECT_NE(runner.PerformRequest(request, &status, &headers, {}, {}, stop), 0);
  EXPECT_THROW(runner.PerformRequest(request, &status, &headers, {}, fail, {}), std::length_error);
}
