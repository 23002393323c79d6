// A name server that does not respond, simulated by a getaddrinfo() that waits.

#include <netdb.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <curl/curl.h>

#include "tests/platform/host/HttpTest.h"

namespace {

// Blocks every caller that asks for an address, until the test releases them.
class SilentNameServer {
 public:
  void wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    isAsked_ = true;
    changed_.wait_for(lock, std::chrono::seconds(20), [this] { return letsGo_; });
    isLeft_ = true;
    changed_.notify_all();
  }

  // True while a caller waits.
  bool holdsSomebody() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return isAsked_ && !isLeft_;
  }

  // Releases the callers, and waits until none is left; then it holds the next one.
  void release() {
    std::unique_lock<std::mutex> lock(mutex_);
    letsGo_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !isAsked_ || isLeft_; });
    isAsked_ = false;
    isLeft_ = false;
    letsGo_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isAsked_ = false;
  bool letsGo_ = false;
  bool isLeft_ = false;
};

SilentNameServer nameServer;

}  // namespace

// Replaces the C library's function: libcurl calls this one.
extern "C" int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**) {
  nameServer.wait();
  return EAI_AGAIN;
}

using HttpRequestNameServerTest = HttpTest;

TEST_F(HttpRequestNameServerTest, KeepsTheLimitWhileTheNameServerIsSilent) {
  const Answer answer = perform(HttpRequest("GET", "https://silent.example/"), 1);
  EXPECT_EQ(answer.result, CURLE_OPERATION_TIMEDOUT);
  EXPECT_TRUE(nameServer.holdsSomebody());
  nameServer.release();
}
