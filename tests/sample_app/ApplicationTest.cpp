// The application as the library starts it, over HTTPS against the store service.

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <thread>

#include <ov_sdk.h>

#include "graphql_api/GraphQLHeader.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "sample_app/FailureList.h"
#include "tests/support/EndToEndTest.h"
#include "tests/support/Json.h"
#include "tests/support/NewProcess.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/WaitUntil.h"

using support::queuedUnderLock;
using support::waitUntil;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

const char kApplication[] = "/ombrel/bin/graphql_sample_metadata.app";
const char kPassword[] = "Secret Pass 1";
const char kBooks[] = "/mnt/ext1/books/";

void sleepMicroseconds(int count) {
  std::this_thread::sleep_for(std::chrono::microseconds(count));
}

class ApplicationTest : public support::EndToEndTest,
                        public ::testing::WithParamInterface<const char*> {
 protected:
  ApplicationTest() {
    support::removeQueue();
    std::filesystem::create_directories(root() + "/ombrel/bin");
    std::filesystem::create_directories(root() + kBooks);
    std::filesystem::create_symlink(SAMPLE_APPLICATION, root() + kApplication);
    set("SAMPLE_APP_IDLE", "300");
    set("SAMPLE_APP_FIRST_WAIT", "20");
    store().reset(GetParam());
    store().change(R"({"clockOffsetSeconds":0})");
    signIn();
  }

  // Ends the task of this root, and none else.
  ~ApplicationTest() override {
    while (const int task = running()) {
      ::kill(task, SIGKILL);
      sleepMicroseconds(1000);
    }
  }

  void signIn() {
    auto api = makeApi();
    const auto stores = api->getStores();
    german = *std::find_if(stores.begin(), stores.end(),
                           [](const auto& found) { return found.storeCode == "de_de"; });
    static int customers = 0;
    const std::string email = "reader" + std::to_string(++customers) + "@app.example";
    api->createAccount(german, email, kPassword, "Ada", "Byron", false);
    ASSERT_NE(api->auth(german, email, kPassword).accessToken, "");
  }

  static int running() { return std::max(FindTaskByAppName(kApplication), 0); }

  // Adds a sample from a process of its own, which has ended when this returns.
  static void add(const std::string& bookId, const std::string& name) {
    ASSERT_EQ(support::statusOfNewProcess([&] {
                addSample(bookId.c_str(), (kBooks + name).c_str());
                return 0;
              }),
              0);
  }

  static bool leaves() {
    return waitUntil([] { return running() == 0; });
  }

  static bool isQueued(const std::string& name) {
    const std::vector<std::string> items = queuedUnderLock();
    return std::any_of(items.begin(), items.end(), [&name](const std::string& item) {
      return item.substr(item.find('@') + 1) == kBooks + name;
    });
  }

  // The metadata of a sample; null when there is none. Half a file would be a failure.
  Json::Value metadataOf(const std::string& name) const {
    const std::string text = support::contentOfFile(root() + kBooks + name + ".json");
    return text.empty() ? Json::Value() : support::parseJson(text);
  }

  bool isDone(const std::string& name) const { return metadataOf(name).isObject(); }

  std::vector<std::string> failures() const {
    std::vector<std::string> lines;
    std::ifstream in(root() + sample_app::kFailureListPath);
    for (std::string line; std::getline(in, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  static int requestsOf(const std::string& operation) { return store().requestsOf(operation); }

  void everySampleIsMissed() { store().addFault(R"({"operation":"productDetails","drop":true})"); }

  graphql::GraphQLStorageApi::StoreInfo german;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Line, ApplicationTest, ::testing::Values("old", "new"),
                         [](const auto& line) { return std::string(line.param); });

TEST_P(ApplicationTest, StartsByItselfWorksTheQueueOffAndLeaves) {
  add("MTAz", "1.sample");
  add("MTA0", "2.sample");
  add("MTAwMQ==", "3.sample");
  ASSERT_TRUE(leaves());
  EXPECT_THAT(queuedUnderLock(), IsEmpty());
  EXPECT_EQ(metadataOf("1.sample")["name"].asString(), "Kleine Kunde vom Schnee");
  EXPECT_EQ(metadataOf("1.sample")["author"].asString(), "Anton Weiler");
  EXPECT_EQ(metadataOf("1.sample")["price"].asString(), "EUR 12.00");
  EXPECT_EQ(metadataOf("1.sample")["thumbnail"].asString(), "1.sample.thumbnail.png");
  EXPECT_EQ(metadataOf("2.sample")["price"].asString(), "EUR 0.69");
  EXPECT_EQ(metadataOf("2.sample")["oldPrice"].asString(), "EUR 0.99");
  EXPECT_TRUE(metadataOf("3.sample")["thumbnail"].isNull());
  std::vector<std::string> names;
  for (const auto& file : support::contentOf(root() + kBooks)) {
    names.push_back(file.first);
    if (file.first.find(".png") != std::string::npos) {
      EXPECT_THAT(file.second, StartsWith("\x89PNG")) << file.first;
    }
  }
  EXPECT_THAT(names, ElementsAre("1.sample.json", "1.sample.thumbnail.png", "2.sample.json",
                                 "2.sample.thumbnail.png", "3.sample.json"));
}

TEST_P(ApplicationTest, APictureThatTheStoreLacksIsNoted) {
  add("MTIzNDU2", "1.sample");
  ASSERT_TRUE(leaves());
  EXPECT_THAT(metadataOf("1.sample")["thumbnailProblem"].asString(), HasSubstr("404"));
}

TEST_P(ApplicationTest, ABookThatTheStoreDoesNotKnowIsSetAside) {
  add("bm9uZQ==", "1.sample");
  add("MTAw", "2.sample");
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("2.sample"));
  EXPECT_FALSE(isDone("1.sample"));
  EXPECT_THAT(queuedUnderLock(), IsEmpty());
  EXPECT_THAT(failures(), ElementsAre(HasSubstr("the store does not know the book")));
  EXPECT_EQ(requestsOf("refreshTokens"), 0);
}

TEST_P(ApplicationTest, AnExpiredTokenIsRefreshedOnceForAllItems) {
  const std::string before = graphql::GraphQLStorageApi().accessToken();
  store().change(R"({"clockOffsetSeconds":7200})");
  add("MTAw", "1.sample");
  add("MTAx", "2.sample");
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("1.sample"));
  EXPECT_TRUE(isDone("2.sample"));
  EXPECT_EQ(requestsOf("refreshTokens"), 1);
  EXPECT_NE(graphql::GraphQLStorageApi().accessToken(), before);
}

TEST_P(ApplicationTest, WithoutASessionItKeepsTheItemsUntilTheNextStart) {
  graphql::GraphQLStorageApi().logoutOnlyFromStore();
  add("MTAw", "1.sample");
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isQueued("1.sample"));
  EXPECT_THAT(logged("nobody is signed in"), SizeIs(1));
  signIn();
  add("MTAx", "2.sample");
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("1.sample"));
  EXPECT_TRUE(isDone("2.sample"));
}

TEST_P(ApplicationTest, TriesAgainWhileTheNetworkIsGoneAndGoesOnWhenItIsBack) {
  everySampleIsMissed();
  add("MTAw", "1.sample");
  ASSERT_TRUE(waitUntil([&] { return requestsOf("productDetails") >= 3; }));
  EXPECT_TRUE(running());
  EXPECT_TRUE(isQueued("1.sample"));
  store().reset(GetParam());
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("1.sample"));
  EXPECT_THAT(failures(), IsEmpty());
}

TEST_P(ApplicationTest, ATermSignalEndsItAndKeepsTheItem) {
  set("SAMPLE_APP_FIRST_WAIT", "3000000");
  everySampleIsMissed();
  add("MTAw", "1.sample");
  ASSERT_TRUE(waitUntil([&] { return requestsOf("productDetails") >= 1; }));
  const int task = running();
  ASSERT_GT(task, 0);  // 0 would be every process of this group
  ::kill(task, SIGTERM);
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isQueued("1.sample"));
}

TEST_P(ApplicationTest, OfTwoThatAreStartedAtOnceOneWorks) {
  everySampleIsMissed();
  add("MTAw", "1.sample");
  const int first = running();
  ASSERT_GT(first, 0);
  ASSERT_TRUE(waitUntil([&] { return requestsOf("productDetails") >= 1; }));
  char path[sizeof kApplication];
  std::copy(std::begin(kApplication), std::end(kApplication), path);
  char* const arguments[] = {path, nullptr};
  const int second = NewTask(kApplication, arguments, "a", "a", nullptr, 0);
  ASSERT_GT(second, 0);
  EXPECT_TRUE(waitUntil(
      [second] { return !std::filesystem::exists("/proc/" + std::to_string(second) + "/exe"); }));
  EXPECT_EQ(running(), first);
  store().reset(GetParam());
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("1.sample"));
}

TEST_P(ApplicationTest, OutlivesItsStarterWithTheArgumentsItWasGiven) {
  everySampleIsMissed();
  add("MTAw", "1.sample");  // the starter has ended here
  const int task = running();
  ASSERT_GT(task, 0);
  std::ifstream in("/proc/" + std::to_string(task) + "/cmdline");
  std::string arguments;
  std::getline(in, arguments);
  // Where the application runs in an emulator, the emulator's arguments come before.
  EXPECT_THAT(arguments, EndsWith(std::string(kApplication) + '\0'));
  store().reset(GetParam());
  ASSERT_TRUE(leaves());
  EXPECT_TRUE(isDone("1.sample"));
}

TEST_P(ApplicationTest, ManyCallsWhileItRunsStartItOnce) {
  const std::string starts = root() + "/starts";
  const std::string leave = root() + "/leave";
  std::filesystem::remove(root() + kApplication);
  std::ofstream(root() + kApplication) << "#!/bin/sh\necho started >>" << starts
                                       << "\nwhile [ ! -e " << leave << " ]; do sleep 0.02; done\n";
  std::filesystem::permissions(root() + kApplication, std::filesystem::perms::owner_all);
  for (int call = 0; call < 50; ++call) {
    add("MTAw", std::to_string(call));
  }
  std::ofstream(leave).flush();
  ASSERT_TRUE(leaves());
  EXPECT_THAT(queuedUnderLock(), SizeIs(50));
  EXPECT_EQ(support::contentOfFile(starts), "started\n");
}

TEST_P(ApplicationTest, AnItemThatComesWhileItLeavesIsNotForgotten) {
  set("SAMPLE_APP_IDLE", "0");
  std::mt19937 random(1);
  for (int round = 0; round < 40; ++round) {
    const std::string name = std::to_string(round);
    add("MTAw", name);
    // Nobody adds another one that could start the application for this one.
    ASSERT_TRUE(waitUntil([&] { return isDone(name); })) << "round " << round;
    sleepMicroseconds(static_cast<int>(random() % 8000));
  }
  ASSERT_TRUE(leaves());
  EXPECT_THAT(queuedUnderLock(), IsEmpty());
}

TEST_P(ApplicationTest, KilledAtAnyMomentItLosesNothing) {
  const unsigned int seed = std::random_device()();
  std::cout << "seed " << seed << "\n";
  std::mt19937 random(seed);
  std::vector<std::string> names;
  const auto addNext = [&] {
    names.push_back(std::to_string(names.size()) + ".sample");
    add("MTAw", names.back());
  };
  int kills = 0;
  for (int round = 0; round < 20; ++round) {
    addNext();
    addNext();
    addNext();
    sleepMicroseconds(static_cast<int>(random() % 120000));
    const int task = running();
    if (task > 0) {
      ::kill(task, SIGKILL);
      ASSERT_TRUE(leaves());
      ++kills;
    }
  }
  // The rewrite of the queue is where an item can be in neither place: the journal has it then, and
  // the next start puts it back.
  addNext();
  ASSERT_TRUE(leaves());
  for (const std::string& name : names) {
    EXPECT_TRUE(isDone(name)) << name;
  }
  EXPECT_THAT(queuedUnderLock(), IsEmpty());
  EXPECT_THAT(failures(), IsEmpty());
  std::cout << kills << " kills, " << names.size() << " items, " << requestsOf("productDetails")
            << " lookups in the service's memory\n";
}
