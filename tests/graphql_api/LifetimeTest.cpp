// Operations at the end of a thread and of a process, when static and thread-local objects may
// already be destroyed. Each test ends a new process.

#include <pthread.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

#include "graphql_api/GraphQLApi.h"
#include "tests/support/NewProcess.h"
#include "tests/support/PlatformTest.h"

using graphql::GraphQLApi;
using support::passesInNewProcess;

namespace {

// An operation with a response, including its log line.
bool operationSucceeds() {
  fake::reset();
  fake::platform().http.answer(
      200, R"({"data":{"availableBookStores":[{"status":true,"url":"u","storeCode":7.5}]}})");
  const StoreInfoList stores = GraphQLApi(nullptr).getStores();
  return stores.size() == 1 && stores[0].storeCode == "7.5" &&
         fake::platform().log.at(0).text.find("7.5") != std::string::npos;
}

enum class End { Ignored, GlobalDestructor, ExitHandler };

// Runs an operation when the process ends; its result becomes the exit status.
class AtEnd {
 public:
  // The fake platform is created first, so it is destroyed last.
  AtEnd() {
    fake::platform();
    std::atexit([] { instance.endWith(End::ExitHandler); });
  }
  ~AtEnd() { endWith(End::GlobalDestructor); }

  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;

  End when = End::Ignored;

 private:
  void endWith(End now) const {
    if (when == now) {
      ::_exit(operationSucceeds() ? 0 : 1);
    }
  }

  static AtEnd instance;
  friend AtEnd& atEnd();
};

AtEnd AtEnd::instance;

AtEnd& atEnd() {
  return AtEnd::instance;
}

// True when an operation succeeds at that time, after an earlier operation has succeeded.
bool succeedsAgainAt(End end) {
  return passesInNewProcess([end] {
    ASSERT_TRUE(operationSucceeds());
    atEnd().when = end;
    std::exit(2);
  });
}

class InThreadStorage {
 public:
  ~InThreadStorage() {
    if (succeeded != nullptr) {
      *succeeded = operationSucceeds();
    }
  }

  bool* succeeded = nullptr;
};

}  // namespace

TEST(LifetimeTest, AnOperationRunsInAGlobalDestructor) {
  EXPECT_TRUE(succeedsAgainAt(End::GlobalDestructor));
}

TEST(LifetimeTest, AnOperationRunsInAnExitHandler) {
  EXPECT_TRUE(succeedsAgainAt(End::ExitHandler));
}

TEST(LifetimeTest, AnOperationRunsInTheDestructorOfAThreadLocalObject) {
  bool succeeded = false;
  std::thread([&succeeded] {
    thread_local InThreadStorage object;  // made first, and so destroyed last
    object.succeeded = &succeeded;
    EXPECT_TRUE(operationSucceeds());
  }).join();
  EXPECT_TRUE(succeeded);
}

TEST(LifetimeTest, AnOperationRunsInTheDestructorOfAThreadKey) {
  bool succeeded = false;
  pthread_key_t key = {};
  ASSERT_EQ(::pthread_key_create(
                &key, [](void* result) { *static_cast<bool*>(result) = operationSucceeds(); }),
            0);
  std::thread([&] {
    EXPECT_TRUE(operationSucceeds());
    ::pthread_setspecific(key, &succeeded);
  }).join();
  ::pthread_key_delete(key);
  EXPECT_TRUE(succeeded);
}
