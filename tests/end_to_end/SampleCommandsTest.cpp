// The commands for samples, each in a new process, over HTTPS against both lines of the platform.

#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>

#include "tests/support/ChildProcess.h"
#include "tests/support/EndToEndTest.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/WaitUntil.h"

using support::Ended;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

const char kPassword[] = "Secret Pass 1";
const char kBooks[] = "/mnt/ext1/books/";

class SampleCommandsTest : public support::EndToEndTest,
                           public ::testing::WithParamInterface<const char*> {
 protected:
  SampleCommandsTest() {
    support::removeQueue();
    std::filesystem::create_directories(root() + kBooks);
    store().reset(GetParam());
    store().change(R"({"tokenLifetimeSeconds":3600,"clockOffsetSeconds":0})");
    static int customers = 0;
    const std::string email = "reader" + std::to_string(++customers) + "@samples.example";
    run({"stores", "--refresh"});
    run({"register", "--store", "de_de", "--email", email, "--first-name", "Ada", "--last-name",
         "Byron", "--password-stdin"},
        kPassword);
    EXPECT_EQ(
        run({"sign-in", "--store", "de_de", "--email", email, "--password-stdin"}, kPassword).code,
        0);
  }

  static Ended run(std::vector<std::string> words, const std::string& input = "") {
    words.insert(words.begin(), BOOKSTORE_PROGRAM);
    return support::run(words, input);
  }

  static void add(const std::string& book, const std::string& name) {
    EXPECT_EQ(run({"sample", "add", book, kBooks + name}).code, 0);
  }

  // The file that a test waits for is written by a program that the test has started.
  static int processIn(const std::string& path) {
    int process = 0;
    support::waitUntil([&] { return static_cast<bool>(std::ifstream(path) >> process); });
    return process;
  }

  static bool arrives(const std::string& operation) {
    return support::waitUntil([&] { return store().requestsOf(operation) > 0; });
  }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Line, SampleCommandsTest, ::testing::Values("old", "new"),
                         [](const auto& line) { return std::string(line.param); });

TEST_P(SampleCommandsTest, ShowABookAndItsPrice) {
  EXPECT_EQ(run({"sample", "info", "MTAx"}).output,
            "Book           MTAx\n"
            "Title          Sieben Türme\n"
            "Author         Jakob Ahrens\n"
            "Price          EUR 8.00\n"
            "Regular price  EUR 10.00\n"
            "Picture        https://de.bookstore.example/media/catalog/product/101.png\n"
            "Store          Bücherwelt Deutschland (bookstore-de)\n");
  EXPECT_THAT(run({"sample", "price", "MTAz", "--json"}).output, HasSubstr("\"EUR 12.00\""));
  EXPECT_EQ(run({"sample", "info", "unknown"}).code, 5);
  const Ended dry = run({"sample", "info", "MTAx", "--dry-run", "--curl"});
  EXPECT_THAT(dry.output, HasSubstr("-H 'Authorization: Bearer ***'"));
}

TEST_P(SampleCommandsTest, WorkTheQueueThroughWithPicturesAndAnExpiredToken) {
  add("MTAz", "1");
  add("unknown", "2");
  add("MTAx", "3");
  store().change(R"({"clockOffsetSeconds":7200})");
  const Ended worked = run({"sample", "work"});
  EXPECT_EQ(worked.code, 0);
  EXPECT_THAT(worked.output,
              HasSubstr("TITLE                    AUTHOR        PRICE      BOOK\n"
                        "Kleine Kunde vom Schnee  Anton Weiler  EUR 12.00  MTAz\n"
                        "Sieben Türme             Jakob Ahrens  EUR 8.00   MTAx\n"
                        "\n"
                        "SET ASIDE  FILE               REASON\n"
                        "unknown    /mnt/ext1/books/2  the store does not know the book\n"
                        "\n"
                        "The queue is empty\n"));
  EXPECT_TRUE(std::filesystem::exists(root() + kBooks + "1.thumbnail.png"));
  EXPECT_TRUE(std::filesystem::exists(root() + kBooks + "3.json"));
  EXPECT_EQ(run({"sample", "next"}).code, 6);
}

TEST_P(SampleCommandsTest, CtrlCStopsTheWorkAndLosesNothing) {
  add("MTAz", "1");
  add("MTAx", "2");
  store().addFault(R"({"operation":"productDetails","times":1,"delayMilliseconds":1000})");
  const std::string pidFile = root() + "/pid";
  auto working = std::async(std::launch::async, [&] {
    return support::run({"/bin/bash", "-c",
                         "echo $$ >\"$1\"; exec env --default-signal=INT \"$0\" sample work",
                         BOOKSTORE_PROGRAM, pidFile});
  });
  ASSERT_TRUE(arrives("productDetails"));
  const int process = processIn(pidFile);
  ASSERT_GT(process, 0);  // 0 would be every process of this group
  ASSERT_EQ(::kill(process, SIGINT), 0);
  const Ended ended = working.get();
  EXPECT_EQ(ended.code, 128 + SIGINT);
  EXPECT_THAT(ended.output,
              AllOf(HasSubstr("\nKleine Kunde vom Schnee  Anton Weiler  EUR 12.00  MTAz\n"),
                    HasSubstr("bookstore: stopped; samples left in the queue: 1\n")));
  EXPECT_EQ(run({"sample", "list"}).output, "BOOK  FILE\nMTAx  /mnt/ext1/books/2\n");
  EXPECT_THAT(run({"sample", "work"}).output, Not(IsEmpty()));
  EXPECT_EQ(run({"sample", "list"}).output, "The queue is empty\n");
}
