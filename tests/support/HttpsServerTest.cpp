#include "tests/support/HttpsServer.h"

#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using support::HttpsServer;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

support::Ended request(const HttpsServer& server, int port, const std::string& options) {
  const std::string host = HttpsServer::kHost;
  return support::run({"sh", "-c",
                       "exec curl --silent --show-error --max-time 20 --connect-to ::127.0.0.1:" +
                           std::to_string(port) + " --cacert " + server.certificateFile() + " " +
                           options + " https://" + host + "/echo"});
}

}  // namespace

TEST(HttpsServerTest, AnswersOverBothVersionsUnderItsCertificate) {
  const HttpsServer server;
  EXPECT_THAT(request(server, server.http1Port(), "").output, StartsWith("GET /echo HTTP/1.1\r\n"));
  EXPECT_THAT(request(server, server.http2Port(), "--http2").output, HasSubstr("/echo"));
  EXPECT_EQ(request(server, server.http1Port(), "--pinnedpubkey " + server.publicKeyPin()).code, 0);
  EXPECT_EQ(request(server, server.http1Port(), "--pinnedpubkey sha256//AAAA").code, 90);
}

TEST(HttpsServerTest, IsGoneWithItsFolderWhenDestroyed) {
  auto server = std::make_unique<HttpsServer>();
  const std::string folder = server->folder();
  const int port = server->http1Port();
  server.reset();
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_EQ(support::run({"curl", "--silent", "--max-time", "20",
                          "http://127.0.0.1:" + std::to_string(port)})
                .code,
            7);
}
