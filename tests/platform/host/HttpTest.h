// Shared by the tests of the host's HTTP: a server, requests to it, and the log.

#ifndef TESTS_PLATFORM_HOST_HTTPTEST_H_
#define TESTS_PLATFORM_HOST_HTTPTEST_H_

#include <string>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include <orvane/utilities/HttpRequest.h>
#include <orvane/utilities/HttpRequestRunner.h>

#include "tests/support/HttpsServer.h"
#include "tests/support/ScopedSetting.h"

class HttpTest : public ::testing::Test {
 protected:
  using HttpRequest = orvane::utilities::HttpRequest;
  using HttpRequestRunner = orvane::utilities::HttpRequestRunner;
  using Headers = std::unordered_map<std::string, std::string>;

  struct Answer {
    int result;
    long status;
    std::string body;
    Headers headers;
  };

  // Points the settings at the server.
  HttpTest();

  // Sets an environment variable until the end of the test.
  void set(const std::string& name, const std::string& value);
  // Connects requests for the tests' host name to this port.
  void connectTo(int port);

  // The URL of a path on the server.
  static std::string url(const std::string& path);

  // Performs `request` with a sufficient time limit, or with `limit` seconds.
  static Answer perform(const HttpRequest& request, unsigned int limit = kAmpleSeconds);
  static Answer get(const std::string& path, unsigned int limit = kAmpleSeconds);
  static Answer post(const std::string& path, const std::string& body);
  // Like the above, with the overload without a limit and its callbacks.
  static Answer getWithCallbacks(const std::string& path,
                                 HttpRequestRunner::WriteCallback write = {},
                                 HttpRequestRunner::ProgressCallback progress = {});

  // What was logged in this test, each line as "LEVEL TEXT\n".
  static std::string log();

  static constexpr unsigned int kAmpleSeconds = 60;

  support::HttpsServer server_;

 private:
  support::ScopedSettings settings_;
};

#endif  // TESTS_PLATFORM_HOST_HTTPTEST_H_
