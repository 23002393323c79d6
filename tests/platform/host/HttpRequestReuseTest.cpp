// What is kept after a request: connections, TLS sessions, parsed CA certificates.

#include <cstdio>
#include <thread>

#include <gmock/gmock.h>

#include "tests/platform/host/HttpTest.h"

class HttpRequestReuseTest : public HttpTest {
 protected:
  static std::string connection() { return get("/connection").body; }

  static std::string newConnection(int number) {
    return "{\"number\":" + std::to_string(number) + ",\"resumed\":false}";
  }

  static std::string resumedConnection(int number) {
    return "{\"number\":" + std::to_string(number) + ",\"resumed\":true}";
  }
};

TEST_F(HttpRequestReuseTest, KeepsOneConnectionForAllRequests) {
  EXPECT_EQ(connection(), newConnection(1));
  EXPECT_EQ(post("/error", "body").status, 500);
  EXPECT_EQ(getWithCallbacks("/gzip").body, "compressed");
  EXPECT_EQ(connection(), newConnection(1));
}

TEST_F(HttpRequestReuseTest, CarriesNothingElseOverFromTheRequestBefore) {
  HttpRequest request("POST", url("/echo"));
  request.AddHeader("Authorization", "Bearer token");
  request.AddPostData("body");
  perform(request);
  EXPECT_EQ(get("/echo").body,
            "GET /echo HTTP/1.1\r\nHost: store.example\r\n"
            "Accept-Encoding: deflate, gzip, br, zstd\r\n\r\n");
}

TEST_F(HttpRequestReuseTest, GivesNothingOfTheAnswerBeforeWhenNothingWasSent) {
  getWithCallbacks("/headers");
  HttpRequest refused("GET", url("/headers"));
  refused.AddHeader("X-Bad", "\n");
  long status = -1;
  Headers headers = {{"old", "old"}};
  EXPECT_NE(HttpRequestRunner().PerformRequest(refused, &status, &headers, {}, {}, {}), 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(headers.empty());
}

TEST_F(HttpRequestReuseTest, ResumesTheTlsSessionOnANewConnection) {
  EXPECT_EQ(get("/close").body, "last");
  EXPECT_EQ(connection(), resumedConnection(2));
}

TEST_F(HttpRequestReuseTest, ReadsTheAuthoritiesOnce) {
  EXPECT_EQ(get("/close").result, 0);
  EXPECT_EQ(std::remove(server_.certificateFile().c_str()), 0);
  EXPECT_EQ(get("/close").result, 0);
}

TEST_F(HttpRequestReuseTest, ReadsTheAuthoritiesAnewWhenTheSettingNamesAnotherFile) {
  EXPECT_EQ(get("/close").result, 0);
  set("ORVANE_CA_FILE", "/dev/null");
  EXPECT_NE(get("/close").result, 0);
}

TEST_F(HttpRequestReuseTest, TakesANewConnectionWhenTheServerClosedTheKeptOne) {
  EXPECT_EQ(get("/close-silently").body, "last");
  EXPECT_EQ(connection(), resumedConnection(2));
}

TEST_F(HttpRequestReuseTest, SendsAgainWhenTheServerClosesTheKeptConnectionUnderTheRequest) {
  EXPECT_EQ(get("/drop-next").body, "kept");
  const Answer answer = post("/echo", "body");
  EXPECT_EQ(answer.result, 0);
  EXPECT_THAT(answer.body, ::testing::HasSubstr("\r\n\r\nbody"));
  EXPECT_EQ(connection(), resumedConnection(2));
}

TEST_F(HttpRequestReuseTest, GivesEachThreadAConnectionOfItsOwn) {
  std::string other;
  EXPECT_EQ(connection(), newConnection(1));
  std::thread([&other] { other = connection(); }).join();
  EXPECT_EQ(other, newConnection(2));
  EXPECT_EQ(connection(), newConnection(1));
}
