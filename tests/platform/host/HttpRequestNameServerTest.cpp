// A name server that does not answer, played by a getaddrinfo() that waits.

#include <netdb.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <curl/curl.h>

#include "tests/platform/host/HttpTest.h"

namespace {

// Holds whoever asks for an address until the test lets go.
class SilentNameServer {
 public:
  void wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    isAsked_ = true;
    changed_.wait_for(lock, std::chrono::seconds(20), [this] { return letsGo_; });
    isLeft_ = true;
    changed_.notify_all();
  }

  // True when somebody asked and still waits.
  bool holdsSomebody() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return isAsked_ && !isLeft_;
  }

  // Lets go, and waits until nobody is left.
  void release() {
    std::unique_lock<std::mutex> lock(mutex_);
    letsGo_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !isAsked_ || isLeft_; });
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

// Stands in for the C library's: libcurl calls this one.
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
