#include "tests/support/StoreService.h"

#include <sys/types.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/NewProcess.h"
#include "tests/support/WaitUntil.h"

using support::StoreService;

namespace {

// The process of the service of this state folder; 0 when there is none.
pid_t processOf(const std::string& folder) {
  std::istringstream lines(support::contentOfFile(folder + "/state/store.env"));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("pid=", 0) == 0) {
      return std::stoi(line.substr(4));
    }
  }
  return 0;
}

bool ends(pid_t process) {
  return support::waitUntil(
      [process] { return !std::filesystem::exists("/proc/" + std::to_string(process) + "/exe"); });
}

}  // namespace

TEST(StoreServiceTest, CountsRequestsForgetsThemAndGoesWithItsFolder) {
  std::string folder;
  pid_t process = 0;
  {
    StoreService store;
    folder = store.folder();
    process = processOf(folder);
    ASSERT_GT(process, 0);
    support::run({"curl", "--silent", "--cacert", store.authority(), "--connect-to",
                  store.connectTo(), "--header", "Content-Type: application/json", "--data",
                  R"({"query":"query availableBookStores { availableBookStores { url } }"})",
                  "https://bookstore.example/graphql"});
    EXPECT_EQ(store.requests().size(), 1U);
    EXPECT_EQ(store.requestsOf("availableBookStores"), 1);
    EXPECT_EQ(store.requestsOf("customer"), 0);
    store.reset("old");
    EXPECT_EQ(store.requests().size(), 0U);
    store.stop();
    store.start();
    EXPECT_NE(processOf(folder), process);
    process = processOf(folder);
  }
  EXPECT_TRUE(ends(process));
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(StoreServiceTest, EndsWhenItsStarterIsKilled) {
  const support::TemporaryFolder shared;
  const int status = support::statusOfNewProcess([&shared] {
    const StoreService store;
    std::ofstream(shared.path() + "/folder") << store.folder();
    std::ofstream(shared.path() + "/process") << processOf(store.folder());
    ::raise(SIGKILL);
    return 0;
  });
  ASSERT_TRUE(WIFSIGNALED(status)) << status;
  const std::string process = support::contentOfFile(shared.path() + "/process");
  ASSERT_GT(std::stoi("0" + process), 0);
  EXPECT_TRUE(ends(std::stoi(process)));
  std::filesystem::remove_all(support::contentOfFile(shared.path() + "/folder"));
}
