// The built application, the same file, over two implementations of the platform: it does the same,
// in the same words.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sample_app/FailureList.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Json.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/ScopedSetting.h"
#include "tests/support/StoreService.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaitUntil.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

const char kBooks[] = "/mnt/ext1/books/";
const char kNothingListens[] = "::127.0.0.1:1";

// What can be seen of a run of the application when it has ended.
struct Outcome {
  int code;
  std::vector<std::pair<std::string, std::string>> books;  // files in the folder for books
  std::vector<std::string> reasons;                        // why items were set aside
  std::string queue;
  std::vector<std::string> log;  // the texts of failures
};

// A device whose two platform libraries are in `libraries`, with a customer and an empty queue.
class Device {
 public:
  Device(std::string libraries, support::StoreService& store)
      : libraries_(std::move(libraries)), store_(store) {
    support::removeQueue();
    std::filesystem::create_directories(root() + kBooks);
    connect(store_.connectTo());
    static int customers = 0;
    call({"sign-in", "reader" + std::to_string(++customers) + "@platforms.example"});
  }

  // Sends requests to the store to this place.
  void connect(const std::string& connectTo) {
    connectTo_ = connectTo;
    const std::string folder = root() + "/mnt/ext1/system/config";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/device.cfg")
        << "caFile=" << store_.authority() << "\nconnectTo=" << connectTo << "\n";
  }

  void add(const std::string& book, const std::string& name) { call({"add", book, kBooks + name}); }
  void signOut() { call({"sign-out"}); }

  enum class Ending { ByItself, AfterAFailure };

  // Runs the application until it leaves, or ends it when it has logged a failure.
  Outcome work(Ending ending = Ending::ByItself) {
    const int log = ::open(logFile().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const pid_t application =
        support::start(over({SAMPLE_APPLICATION}), STDIN_FILENO, STDOUT_FILENO, log);
    ::close(log);
    if (ending == Ending::AfterAFailure) {
      EXPECT_TRUE(support::waitUntil([this] { return !loggedTexts().empty(); }));
      ::kill(application, SIGTERM);
    }
    Outcome outcome;
    outcome.code = support::codeOf(application);
    outcome.books = support::contentOf(root() + kBooks);
    const std::string failures = root() + sample_app::kFailureListPath;
    for (const auto& failure : support::parseJsonLines(support::contentOfFile(failures))) {
      outcome.reasons.push_back(failure["reason"].asString());
    }
    outcome.queue = call({"list"});
    outcome.log = loggedTexts();
    return outcome;
  }

 private:
  std::string root() const { return folder_.path() + "/root"; }
  std::string logFile() const { return folder_.path() + "/log"; }

  // A command with every setting of either implementation, each of which reads its own.
  std::vector<std::string> over(const std::vector<std::string>& command) const {
    std::vector<std::string> words = {"env",
                                      "LD_LIBRARY_PATH=" + libraries_,
                                      "LD_BIND_NOW=1",
                                      "ORVANE_ROOT=" + root(),
                                      "FIRMWARE_ROOT=" + root(),
                                      "ORVANE_LOG=stderr",
                                      "ORVANE_LOG_LEVEL=2",
                                      "ORVANE_CA_FILE=" + store_.authority(),
                                      "ORVANE_CONNECT_TO=" + connectTo_,
                                      "SAMPLE_APP_IDLE=100",
                                      "SAMPLE_APP_FIRST_WAIT=20"};
    words.insert(words.end(), command.begin(), command.end());
    return words;
  }

  std::string call(const std::vector<std::string>& words) const {
    std::vector<std::string> command = {SAMPLE_DEVICE};
    command.insert(command.end(), words.begin(), words.end());
    return support::outputOf(over(command));
  }

  // The application's own lines, from their text on: before it, each implementation writes in its
  // own way where a line comes from. Lines that are the same in a row count once.
  std::vector<std::string> loggedTexts() const {
    std::istringstream lines(support::contentOfFile(logFile()));
    const std::regex ofApplication("sample_app/[A-Za-z]+\\.(?:cpp|h):\\d+[^:]*: *(.*)");
    std::vector<std::string> texts;
    for (std::string line; std::getline(lines, line);) {
      std::smatch match;
      if (std::regex_search(line, match, ofApplication) &&
          (texts.empty() || texts.back() != match[1])) {
        texts.push_back(match[1]);
      }
    }
    return texts;
  }

  const std::string libraries_;
  support::StoreService& store_;
  const support::TemporaryFolder folder_;
  std::string connectTo_;
};

class PlatformsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { store_ = std::make_unique<support::StoreService>(); }
  static void TearDownTestSuite() { store_.reset(); }

  PlatformsTest() { store_->reset(); }

  // What `work` does with a device, which has to be the same over both implementations.
  template <typename Work>
  static Outcome overBoth(Work work) {
    Device host(HOST_LIBRARIES, *store_);
    const Outcome overHost = work(host);
    Device example(EXAMPLE_LIBRARIES, *store_);
    const Outcome overExample = work(example);
    EXPECT_EQ(overHost.code, overExample.code);
    EXPECT_EQ(overHost.books, overExample.books);
    EXPECT_EQ(overHost.reasons, overExample.reasons);
    EXPECT_EQ(overHost.queue, overExample.queue);
    EXPECT_EQ(overHost.log, overExample.log);
    return overExample;
  }

  static inline std::unique_ptr<support::StoreService> store_;
};

}  // namespace

// Or the tests below would compare one implementation with itself.
TEST_F(PlatformsTest, TheApplicationLoadsTheLibrariesThatItIsGiven) {
  const auto loaded = [](const std::string& libraries) {
    return support::outputOf(
        {"env", "LD_LIBRARY_PATH=" + libraries, "LD_TRACE_LOADED_OBJECTS=1", SAMPLE_APPLICATION});
  };
  for (const std::string folder : {HOST_LIBRARIES, EXAMPLE_LIBRARIES}) {
    EXPECT_THAT(loaded(folder), HasSubstr("libov_sdk.so => " + folder + "/libov_sdk.so"));
    EXPECT_THAT(loaded(folder),
                HasSubstr("liborvane_utilities.so => " + folder + "/liborvane_utilities.so"));
  }
}

TEST_F(PlatformsTest, WritesMetadataAndPicturesAndSetsAsideWhatTheStoreDoesNotKnow) {
  const Outcome outcome = overBoth([](Device& device) {
    device.add("MTAz", "1.sample");
    device.add("bm9uZQ==", "2.sample");
    device.add("MTIzNDU2", "3.sample");
    return device.work();
  });
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.queue, "");
  ASSERT_THAT(outcome.books,
              ElementsAre(Pair("1.sample.json", HasSubstr("Kleine Kunde vom Schnee")),
                          Pair("1.sample.thumbnail.png", StartsWith("\x89PNG")),
                          Pair("3.sample.json", HasSubstr("404"))));
  EXPECT_THAT(outcome.reasons, SizeIs(1));
  EXPECT_THAT(outcome.log, ElementsAre(HasSubstr("2.sample")));
}

TEST_F(PlatformsTest, KeepsTheItemsOfACustomerWhoIsNotSignedIn) {
  const Outcome outcome = overBoth([](Device& device) {
    device.signOut();
    device.add("MTAz", "1.sample");
    return device.work();
  });
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.queue, std::string("MTAz@") + kBooks + "1.sample\n");
  EXPECT_THAT(outcome.books, IsEmpty());
  EXPECT_THAT(outcome.log, SizeIs(1));
}

TEST_F(PlatformsTest, ReportsAStoreThatIsNotReachedAndKeepsTheItem) {
  const Outcome outcome = overBoth([](Device& device) {
    device.connect(kNothingListens);
    device.add("MTAz", "1.sample");
    return device.work(Device::Ending::AfterAFailure);
  });
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.queue, std::string("MTAz@") + kBooks + "1.sample\n");
  EXPECT_THAT(outcome.books, IsEmpty());
  EXPECT_THAT(outcome.log, SizeIs(1));
}
