#include <gmock/gmock.h>

#include "platform/host/DryRun.h"
#include "tests/platform/host/HttpTest.h"

class HttpRequestDryRunTest : public HttpTest {
 protected:
  HttpRequestDryRunTest() { host::setDryRun(true); }
  ~HttpRequestDryRunTest() override { host::setDryRun(false); }
};

TEST_F(HttpRequestDryRunTest, ThrowsTheCurlCommandInPlaceOfSending) {
  const HttpRequest request("GET", url("/echo"));
  try {
    perform(request);
    FAIL() << "the request was sent";
  } catch (const host::DryRun& dryRun) {
    EXPECT_EQ(dryRun.curlCommand(), request.toCurlRequest());
    EXPECT_STREQ(dryRun.what(), "dry run: the request was not sent");
  }
}

TEST_F(HttpRequestDryRunTest, CoversTheOverloadWithCallbacks) {
  EXPECT_THROW(getWithCallbacks("/echo"), host::DryRun);
}

TEST_F(HttpRequestDryRunTest, ConnectsOnlyWhenItIsOver) {
  EXPECT_THROW(get("/connection"), host::DryRun);
  host::setDryRun(false);
  EXPECT_THAT(get("/connection").body, ::testing::HasSubstr("\"number\":1,"));
}
