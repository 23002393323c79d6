#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "sample_app/WorkerLock.h"
#include "tests/bookstore/SampleTest.h"
#include "tests/support/NewProcess.h"

using support::queued;
using support::queueHolds;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class SampleWorkCommandTest : public bookstore_tests::SampleTest {
 protected:
  SampleWorkCommandTest() {
    signedIn();
    queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/s/2"}, {"b3", "/mnt/ext1/books/3"}});
  }

  // The first sample is done, the second set aside, and the server answers the third with `status`.
  void workEndsWith(long status, int code) {
    serverKnows("b1");
    serverAnswers("{}", status);
    EXPECT_EQ(run({"sample", "work"}), code);
    EXPECT_THAT(out, AllOf(HasSubstr("Title of b1"), HasSubstr("b2         /s/2")));
    EXPECT_THAT(queued(), ElementsAre("b3@/mnt/ext1/books/3"));
  }
};

}  // namespace

TEST_F(SampleWorkCommandTest, WorksTheQueueThroughAndShowsWhatCameOfIt) {
  serverKnows("b1");
  serverKnows("b3", "12");
  EXPECT_EQ(run({"sample", "work"}), bookstore::kDone);
  EXPECT_EQ(out,
            "TITLE        AUTHOR  PRICE     BOOK\n"
            "Title of b1  Ada     EUR 9.99  b1\n"
            "Title of b3  Ada     EUR 9.99  b3\n"
            "\n"
            "SET ASIDE  FILE  REASON\n"
            "b2         /s/2  the folder of the sample file cannot be used: No such file or "
            "directory\n"
            "\n"
            "The queue is empty\n");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "3.json", "readme"));
}

TEST_F(SampleWorkCommandTest, GivesProgramsOneDocument) {
  serverKnows("b1");
  serverKnows("b3", "12");
  EXPECT_EQ(run({"sample", "work", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["left"], 0);
  ASSERT_EQ(json()["done"].size(), 2U);
  EXPECT_EQ(json()["done"][0]["bookId"], "b1");
  EXPECT_EQ(json()["done"][0]["sampleFilePath"], "/mnt/ext1/books/1");
  EXPECT_EQ(json()["done"][0]["name"], "Title of b1");
  EXPECT_EQ(json()["done"][0]["author"], "Ada");
  EXPECT_EQ(json()["done"][0]["price"], "EUR 9.99");
  EXPECT_THAT(json()["done"][0]["thumbnailProblem"].asString(), HasSubstr("https"));
  EXPECT_EQ(json()["done"][1]["oldPrice"], "EUR 12.00");
  ASSERT_EQ(json()["setAside"].size(), 1U);
  EXPECT_EQ(json()["setAside"][0]["bookId"], "b2");
  EXPECT_EQ(json()["setAside"][0]["sampleFilePath"], "/s/2");
  EXPECT_THAT(json()["setAside"][0]["reason"].asString(), HasSubstr("No such file"));
}

TEST_F(SampleWorkCommandTest, SetsAsideWhatTheStoreDoesNotKnow) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  serverKnowsOnlyTheCustomer();
  EXPECT_EQ(run({"sample", "work"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("b1         /mnt/ext1/books/1  the store does not know the book\n"));
  EXPECT_THAT(root.contentOf("/mnt/ext1/system/state/cache/sample_failures.jsonl"),
              HasSubstr("does not know"));
}

TEST_F(SampleWorkCommandTest, IsDoneWhereNothingIsToDo) {
  queueHolds({});
  EXPECT_EQ(run({"sample", "work"}), bookstore::kDone);
  EXPECT_EQ(out, "The queue is empty\n");
  EXPECT_EQ(run({"sample", "work", "--json"}), bookstore::kDone);
  EXPECT_TRUE(json()["done"].isArray() && json()["setAside"].isArray());
}

TEST_F(SampleWorkCommandTest, StopsWhereTheStoreIsNotReachedAndKeepsTheRest) {
  serverKnows("b1");
  EXPECT_EQ(run({"sample", "work"}), bookstore::kTransferFailed);
  EXPECT_EQ(err,
            "bookstore: the store cannot be reached; samples left in the queue: 1. "
            "Fix the cause, and run \"bookstore sample work\" again; -v shows more.\n");
  EXPECT_THAT(out, AllOf(HasSubstr("Title of b1"), Not(HasSubstr("The queue is empty"))));
  EXPECT_THAT(queued(), ElementsAre("b3@/mnt/ext1/books/3"));
}

TEST_F(SampleWorkCommandTest, StopsAtAnotherStatus) {
  workEndsWith(503, bookstore::kBadStatus);
  EXPECT_THAT(err, HasSubstr("the store returns HTTP status 503; samples left"));
}

TEST_F(SampleWorkCommandTest, StopsWhenTheSessionHasEnded) {
  serverKnows("b1");
  serverAnswers("{}", 401);  // the book
  serverAnswers("{}", 401);  // the refresh
  EXPECT_EQ(run({"sample", "work", "--json"}), bookstore::kNoSession);
  EXPECT_EQ(json()["done"].size(), 1U);
  EXPECT_EQ(json()["left"], 1);
  EXPECT_THAT(err, HasSubstr("refuses the session; samples left in the queue: 1. "
                             "Run \"bookstore sign-in\""));
}

TEST_F(SampleWorkCommandTest, StopsWhereFilesFail) {
  root.put("/mnt/ext1/system/state/cache/sample_queue.journal/in the way", "");
  EXPECT_EQ(run({"sample", "work"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("the journal of the queue cannot be used; samples left"));
  EXPECT_THAT(queued(), SizeIs(3));
}

TEST_F(SampleWorkCommandTest, LeavesTheWorkToTheApplicationThatIsAtItAlready) {
  const sample_app::WorkerLock application;
  EXPECT_EQ(run({"sample", "work"}), bookstore::kLocalFailure);
  EXPECT_THAT(
      err, AllOf(HasSubstr("is already running: it has locked /tmp/graphql_sample_metadata.lock"),
                 HasSubstr(". Wait until \"bookstore sample list\"")));
  EXPECT_THAT(queued(), SizeIs(3));
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SampleWorkCommandTest, SaysThatTheLockOfTheWorkerFails) {
  std::filesystem::remove(sample_app::kWorkerLockPath);
  std::filesystem::create_directory(sample_app::kWorkerLockPath);
  EXPECT_EQ(run({"sample", "work"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("cannot lock /tmp/graphql_sample_metadata.lock"));
  std::filesystem::remove(sample_app::kWorkerLockPath);
}

TEST_F(SampleWorkCommandTest, HoldsNoLockAfterwards) {
  queueHolds({});
  EXPECT_EQ(run({"sample", "work"}), bookstore::kDone);
  EXPECT_EQ(run({"sample", "list"}), bookstore::kDone);
  EXPECT_EQ(sample_app::WorkerLock().state(), sample_app::WorkerLock::State::Held);
}

TEST_F(SampleWorkCommandTest, ShowsOnATerminalHowFarItHasCome) {
  errIsTerminal = true;
  serverKnows("b1");
  serverKnows("b3");
  EXPECT_EQ(run({"sample", "work"}), bookstore::kDone);
  EXPECT_THAT(err, StartsWith("| Reading the queue\r"));
  EXPECT_THAT(err, HasSubstr("[--------------------] 1 of 3  b1\r"));
  EXPECT_THAT(err, HasSubstr("[--------------------] 1 of 3  Title of b1\r"));
  EXPECT_THAT(err, HasSubstr("[######--------------] 2 of 3  b2\r"));
  EXPECT_THAT(err, HasSubstr("[#############-------] 3 of 3  Title of b3\r"));
  EXPECT_THAT(err, EndsWith("\r\033[K"));
}

TEST_F(SampleWorkCommandTest, ShowsTheLogInsteadWhereThatIsAskedFor) {
  errIsTerminal = true;
  serverKnows("b1");
  serverKnows("b3");
  EXPECT_EQ(run({"sample", "work", "-v"}), bookstore::kDone);
  EXPECT_THAT(err, IsEmpty());
}

TEST_F(SampleWorkCommandTest, ASignalStopsItBetweenTwoSamplesAndLosesNothing) {
  serverKnows("b1");
  const int status = support::statusOfNewProcess([this] {
    fake::platform().http.beforeSending = [](const std::string&) { ::raise(SIGINT); };
    std::ofstream outFile(root.at("/out"));
    std::ofstream errFile(root.at("/err"));
    bookstore::run({"sample", "work"}, {outFile, errFile, false, false});
    return 99;
  });
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
  EXPECT_THAT(root.contentOf("/out"), HasSubstr("Title of b1"));
  EXPECT_EQ(root.contentOf("/err"), "bookstore: stopped; samples left in the queue: 2\n");
  EXPECT_THAT(queued(), ElementsAre("b2@/s/2", "b3@/mnt/ext1/books/3"));
}

TEST_F(SampleWorkCommandTest, ADryRunShowsTheRequestForTheOldest) {
  EXPECT_EQ(run({"sample", "work", "--dry-run", "--curl"}), bookstore::kDone);
  EXPECT_THAT(out, HasSubstr("productDetails(uid: \\\"b1\\\")"));
  EXPECT_THAT(queued(), SizeIs(3));
  EXPECT_THAT(fake::platform().http.requests, IsEmpty());
}

TEST_F(SampleWorkCommandTest, ADryRunSaysWhyThereIsNoRequest) {
  queueHolds({{"b2", "/s/2"}});
  EXPECT_EQ(run({"sample", "work", "--dry-run", "--curl"}), bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("the oldest sample causes no request: the folder of"));
  queueHolds({});
  EXPECT_EQ(run({"sample", "work", "--dry-run", "--curl"}), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("the queue is empty"));
  customerAt(german, "", "");
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  EXPECT_EQ(run({"sample", "work", "--dry-run", "--curl"}), bookstore::kNoSession);
  EXPECT_THAT(err, HasSubstr("no request: nobody is signed in"));
  EXPECT_THAT(queued(), SizeIs(1));
}
