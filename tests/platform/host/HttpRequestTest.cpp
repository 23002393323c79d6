#include <orvane/utilities/HttpRequest.h>

#include <gmock/gmock.h>

#include "tests/platform/host/HttpTest.h"
#include "tests/support/NewProcess.h"

using ::testing::HasSubstr;

class HttpRequestTest : public HttpTest {
 protected:
  // Compares the request of the curl command with the request of the runner.
  static void expectSameBytes(const HttpRequest& request) {
    const std::string sent = perform(request).body;
    EXPECT_EQ(support::outputOfShell(request.toCurlRequest() + " --silent --show-error"), sent);
    EXPECT_NE(sent, "");
  }

  static void expectSameBody(const std::string& body) {
    HttpRequest request("POST", url("/echo"));
    request.AddHeader("Content-Type", "application/json");
    request.AddPostData(body);
    expectSameBytes(request);
  }
};

TEST_F(HttpRequestTest, ReadsAsACurlCommand) {
  set("ORVANE_CA_FILE", "/ca.pem");
  set("ORVANE_PINNED_KEY", "sha256//AA=");
  set("ORVANE_CONNECT_TO", "a:443:b:1,::c:2");
  HttpRequest request("POST", "https://store.example/graphql");
  request.AddHeader("Content-Type", "application/json");
  request.AddHeader("User-Agent", "it's");
  request.AddHeader("Store", "");
  request.AddPostData("{}");
  EXPECT_EQ(request.toCurlRequest(),
            "curl --globoff --compressed --noproxy '*' --http1.1 --cacert '/ca.pem'"
            " --pinnedpubkey 'sha256//AA=' --connect-to 'a:443:b:1' --connect-to '::c:2'"
            " -X 'POST' --url 'https://store.example/graphql' -H 'Accept:' -H 'Expect:'"
            " -H 'Content-Type: application/json' -H 'User-Agent: it'\\''s' -H 'Store;'"
            " --data-raw '{}'");
}

TEST_F(HttpRequestTest, NamesHttp2WhenSet) {
  set("ORVANE_HTTP_VERSION", "2");
  EXPECT_THAT(HttpRequest("GET", url("/")).toCurlRequest(), HasSubstr(" --http2 "));
}

TEST_F(HttpRequestTest, ReportsAnHttpVersionThatItDoesNotKnowOnceAndNamesTheUsualOne) {
  set("ORVANE_HTTP_VERSION", "3");
  EXPECT_TRUE(support::passesInNewProcess([] {
    ::testing::internal::CaptureStderr();
    EXPECT_THAT(HttpRequest("GET", url("/")).toCurlRequest(), HasSubstr(" --http1.1 "));
    HttpRequest("GET", url("/")).toCurlRequest();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "ORVANE_HTTP_VERSION=3 is not one of: 1.1, 2; using 1.1\n");
  }));
}

TEST_F(HttpRequestTest, GivesACommandThatSendsTheSameBytes) {
  HttpRequest request("POST", url("/echo?a=[1-2]&b={c,d}&e='f'"));
  request.AddHeader("X-Odd", "a'b\"c\\d$(e)`f` ");
  request.AddHeader("X-Empty", "");
  request.AddHeader("Accept", "text/plain");
  request.AddPostData("{\"query\":\"{ availableBookStores { id } }\",\"variables\":null}\n");
  expectSameBytes(request);
}

TEST_F(HttpRequestTest, GivesACommandThatSendsTheSameBodyHoweverOdd) {
  for (const std::string body : {"", "@/etc/hostname", "it's \"quoted\"", "back\\slash\\n",
                                 "two\nlines\r\n\n", "$(id) `id` $HOME", "-d --next", "a=b&c", "'",
                                 "''", "\\'", "%00 %s", "!! *", "\xc3\xa4\xff"}) {
    expectSameBody(body);
  }
}

TEST_F(HttpRequestTest, GivesACommandThatSendsTheSameWithoutABody) {
  expectSameBytes(HttpRequest("GET", url("/echo")));
  expectSameBytes(HttpRequest("POST", url("/echo")));
  expectSameBytes(HttpRequest("DELETE", url("/echo")));
}

TEST_F(HttpRequestTest, GivesACommandThatAsksForTheHeadOnly) {
  HttpRequest request("HEAD", url("/error"));
  request.AddPostData("body");
  EXPECT_THAT(support::outputOfShell(request.toCurlRequest() + " --silent"),
              HasSubstr("500 Internal Server Error"));
}

TEST_F(HttpRequestTest, GivesACommandThatKeepsToThePinnedKey) {
  set("ORVANE_PINNED_KEY", server_.publicKeyPin());
  expectSameBytes(HttpRequest("GET", url("/echo")));
}
