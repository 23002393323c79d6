#include <gmock/gmock.h>

#include "base/DryRun.h"
#include "tests/platform/host/HttpTest.h"

class HttpRequestDryRunTest : public HttpTest {
 protected:
  HttpRequestDryRunTest() { base::setDryRun(true); }
  ~HttpRequestDryRunTest() override { base::setDryRun(false); }
};

TEST_F(HttpRequestDryRunTest, ThrowsTheCurlCommandInPlaceOfSending) {
  const HttpRequest request("GET", url("/echo"));
  try {
    perform(request);
    FAIL() << "the request was sent";
  } catch (const base::DryRun& dryRun) {
    EXPECT_EQ(dryRun.curlCommand(), request.toCurlRequest());
    EXPECT_STREQ(dryRun.what(), "dry run: the request was not sent");
  }
}

TEST_F(HttpRequestDryRunTest, CoversTheOverloadWithCallbacks) {
  EXPECT_THROW(getWithCallbacks("/echo"), base::DryRun);
}

TEST_F(HttpRequestDryRunTest, ConnectsOnlyWhenItIsOver) {
  EXPECT_THROW(get("/connection"), base::DryRun);
  base::setDryRun(false);
  EXPECT_THAT(get("/connection").body, ::testing::HasSubstr("\"number\":1,"));
}
