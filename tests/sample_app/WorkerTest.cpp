#include "sample_app/Worker.h"

#include <sys/mount.h>

#include <functional>

#include "sample_app/LogListener.h"
#include "tests/sample_app/SampleAppTest.h"

using sample_app::kJournalPath;
using sample_app::Worker;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;
using End = sample_app::Worker::End;
using Step = sample_app::Worker::Step;
using Metadata = graphql::GraphQLApi::SampleMetadata;
using sample_app::Obstacle;

namespace {

constexpr int kEndless = 1000;
constexpr milliseconds kIdle(500);
constexpr milliseconds kFirstWait(1000);

// Passes no time: it keeps what it was asked to wait for.
class FakeWaiter : public sample_app::Waiter {
 public:
  bool wait(milliseconds time) override {
    if (time.count() > 0) {
      waits.push_back(static_cast<int>(time.count()));
      if (onWait) {
        onWait(waits.size());
      }
    }
    return waits.size() < endsAt;
  }

  std::vector<int> waits;
  std::size_t endsAt = kEndless;
  std::function<void(std::size_t count)> onWait;
};

// Keeps what it is told, a line each.
class RecordingListener : public sample_app::WorkListener {
 public:
  void begins(const Item& item) override { told.push_back("begins " + item.bookId); }
  void found(const Metadata& metadata) override { told.push_back("found " + metadata.name); }
  void done(const Item& item, const Metadata& metadata,
            const sample_app::Thumbnail& thumbnail) override {
    told.push_back("done " + item.bookId + " " + metadata.price +
                   (thumbnail.isThere() ? "" : " without a picture"));
  }
  void setAside(const Item& item, const std::string& reason) override {
    told.push_back("set aside " + item.bookId + ": " + reason);
  }
  void postponed(Obstacle obstacle, const std::string& reason) override {
    told.push_back("postponed " + std::to_string(static_cast<int>(obstacle)) + ": " + reason);
  }
  void signedOut(const std::string& reason) override { told.push_back("signed out: " + reason); }

  std::vector<std::string> told;
};

class WorkerTest : public SampleAppTest {
 protected:
  // What a listener hears of a worker that does not wait.
  std::vector<std::string> hear(End end) {
    RecordingListener recording;
    Worker impatient(storage, waiter, recording, milliseconds(0), std::nullopt);
    EXPECT_EQ(impatient.run(), end);
    EXPECT_THAT(waiter.waits, IsEmpty());
    return recording.told;
  }

  Json::Value metadataOf(const std::string& path) {
    return parseJson(root.contentOf(path + ".json"));
  }

  std::vector<std::string> told() { return platform().logTexts(kFailureLevel); }

  FakeWaiter waiter;
  sample_app::LogListener listener;
  Worker worker{storage, waiter, listener, kIdle, kFirstWait};
};

}  // namespace

// --- One item ------------------------------------------------------------------------------------

TEST_F(WorkerTest, AnItemEndsInFilesBesideItsSample) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  answerBook("b1", "https://a.example/1.png");
  platform().http.answer(200, kPng);
  EXPECT_EQ(worker.workOnOldest(), Step::Done);
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "1.thumbnail.png", "readme"));
  EXPECT_EQ(metadataOf("/mnt/ext1/books/1")["name"].asString(), "Title of b1");
  EXPECT_EQ(metadataOf("/mnt/ext1/books/1")["price"].asString(), "EUR 7.50");
  EXPECT_EQ(metadataOf("/mnt/ext1/books/1")["thumbnail"].asString(), "1.thumbnail.png");
  EXPECT_THAT(queued(), ElementsAre("b2@/mnt/ext1/books/2"));
}

TEST_F(WorkerTest, OfTwoItemsOfOneBookTheOlderIsWorked) {
  queueHolds({{"b", "/mnt/ext1/books/1"}, {"b", "/mnt/ext1/books/2"}});
  answerBook("b");
  EXPECT_EQ(worker.workOnOldest(), Step::Done);
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "readme"));
  EXPECT_THAT(queued(), ElementsAre("b@/mnt/ext1/books/2"));
}

TEST_F(WorkerTest, APictureThatCannotBeFetchedDoesNotHoldTheItemUp) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  answerBook("b1", "https://a.example/1.png");
  EXPECT_EQ(worker.workOnOldest(), Step::Done);
  EXPECT_TRUE(metadataOf("/mnt/ext1/books/1")["thumbnail"].isNull());
  EXPECT_THAT(metadataOf("/mnt/ext1/books/1")["thumbnailProblem"].asString(), HasSubstr("failed"));
  EXPECT_THAT(queued(), IsEmpty());
}

TEST_F(WorkerTest, AnUnknownBookIsSetAsideWithTheReason) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  answerNoBook();
  answerCustomer();
  EXPECT_EQ(worker.workOnOldest(), Step::SetAside);
  ASSERT_THAT(failures(), SizeIs(1));
  EXPECT_EQ(failures()[0]["bookId"].asString(), "b1");
  EXPECT_THAT(failures()[0]["reason"].asString(), HasSubstr("does not know"));
  EXPECT_THAT(queued(), ElementsAre("b2@/mnt/ext1/books/2"));
  EXPECT_THAT(told(), ElementsAre(HasSubstr("/1 of the book b1 is set aside")));
}

TEST_F(WorkerTest, APathThatLeavesTheRootIsSetAsideUnasked) {
  queueHolds({{"b1", "/mnt/../../../tmp/out"}});
  EXPECT_EQ(worker.workOnOldest(), Step::SetAside);
  EXPECT_THAT(failures(), SizeIs(1));
  EXPECT_THAT(platform().http.requests, IsEmpty());
  EXPECT_FALSE(std::filesystem::exists("/tmp/out.json"));
}

TEST_F(WorkerTest, ADamagedItemIsSetAside) {
  queueHolds({{"", ""}, {"b2", "/mnt/ext1/books/2"}});
  EXPECT_EQ(worker.workOnOldest(), Step::SetAside);
  EXPECT_THAT(queued(), ElementsAre("b2@/mnt/ext1/books/2"));
}

TEST_F(WorkerTest, FilesThatCanNeverBeWrittenAreSetAside) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  std::filesystem::create_directory(root.at("/mnt/ext1/books/1.json"));
  answerBook("b1");
  EXPECT_EQ(worker.workOnOldest(), Step::SetAside);
  EXPECT_THAT(failures().at(0)["reason"].asString(), HasSubstr("cannot be written"));
}

TEST_F(WorkerTest, AnItemWaitsForRoomOnTheDisk) {
  const std::string folder = root.at("/mnt/ext1/books");
  ASSERT_EQ(::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=4k"), 0);
  root.put("/mnt/ext1/books/full", std::string(4096, 'x'));
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  answerBook("b1");
  EXPECT_EQ(worker.workOnOldest(), Step::Postponed);
  EXPECT_THAT(queued(), SizeIs(1));
  EXPECT_THAT(failures(), IsEmpty());
  ASSERT_EQ(::umount(folder.c_str()), 0);
}

TEST_F(WorkerTest, AnItemIsRemovedOnlyAfterItsFilesAreThere) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  std::filesystem::create_directories(root.at(kJournalPath) + "/in the way");
  answerBook("b1");
  // The journal cannot be read: nothing is begun.
  EXPECT_EQ(worker.workOnOldest(), Step::Postponed);
  EXPECT_THAT(platform().http.requests, IsEmpty());
  std::filesystem::remove_all(root.at(kJournalPath));
  platform().failAt("SerializeString");
  EXPECT_EQ(worker.workOnOldest(), Step::Postponed);
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "readme"));
  EXPECT_THAT(queued(), SizeIs(2));
}

TEST_F(WorkerTest, AnItemThatCannotBeListedAsFailedStays) {
  queueHolds({{"b1", "no path"}});
  std::filesystem::create_directories(root.at(sample_app::kFailureListPath));
  EXPECT_EQ(worker.workOnOldest(), Step::Postponed);
  EXPECT_THAT(queued(), SizeIs(1));
}

TEST_F(WorkerTest, BeginsWithWhatAKilledWorkerLost) {
  root.put(kJournalPath, "2:b117:/mnt/ext1/books/1");
  answerBook("b1");
  EXPECT_EQ(worker.workOnOldest(), Step::Done);
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "readme"));
}

// --- The whole queue -----------------------------------------------------------------------------

TEST_F(WorkerTest, WorksTheQueueOffInItsOrderAndLeavesWhenItStaysEmpty) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  answerBook("b1");
  answerBook("b2");
  EXPECT_EQ(worker.run(), End::Drained);
  EXPECT_THAT(queued(), IsEmpty());
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.json", "2.json", "readme"));
  EXPECT_THAT(waiter.waits, ElementsAre(200, 200, 100));
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(WorkerTest, AnItemThatComesLateStartsTheTimeAgain) {
  waiter.onWait = [](std::size_t count) {
    if (count == 3) {
      queueHolds({{"b1", "/mnt/ext1/books/1"}});
    }
  };
  answerBook("b1");
  EXPECT_EQ(worker.run(), End::Drained);
  EXPECT_THAT(waiter.waits, ElementsAre(200, 200, 100, 200, 200, 100));
}

TEST_F(WorkerTest, WaitsLongerAndLongerForTheNetworkAndKeepsTheItem) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  waiter.endsAt = 8;
  EXPECT_EQ(worker.run(), End::Stopped);
  EXPECT_THAT(waiter.waits, ElementsAre(1000, 2000, 4000, 8000, 16000, 32000, 60000, 60000));
  EXPECT_THAT(queued(), ElementsAre("b1@/mnt/ext1/books/1"));
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ::testing::Contains(HasSubstr("cannot be reached; retrying")).Times(1));
}

TEST_F(WorkerTest, GoesOnWhenTheNetworkIsBack) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  platform().http.failTransfer(6);
  platform().http.answer(503, "");
  answerBook("b1");
  platform().http.failTransfer(6);
  answerBook("b2");
  EXPECT_EQ(worker.run(), End::Drained);
  EXPECT_THAT(waiter.waits, ElementsAre(1000, 2000, 1000, 200, 200, 100));
  EXPECT_THAT(queued(), IsEmpty());
}

TEST_F(WorkerTest, WithNobodySignedInItSaysSoAndLeaves) {
  storage->logoutOnlyFromStore();
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  EXPECT_EQ(worker.run(), End::SignedOut);
  EXPECT_THAT(queued(), SizeIs(2));
  EXPECT_THAT(told(), ElementsAre(HasSubstr("nobody is signed in")));
  EXPECT_THAT(waiter.waits, IsEmpty());
}

TEST_F(WorkerTest, EndsBetweenTwoItemsWhenAsked) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  waiter.endsAt = 0;
  EXPECT_EQ(worker.run(), End::Stopped);
  EXPECT_THAT(platform().http.requests, IsEmpty());
  EXPECT_THAT(queued(), SizeIs(1));
}

// --- A worker that somebody watches --------------------------------------------------------------

TEST_F(WorkerTest, TellsItsListenerOfEachItemInsteadOfTheLog) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "no path"}});
  answerBook("b1");
  EXPECT_THAT(hear(End::Drained),
              ElementsAre("begins b1", "found Title of b1", "done b1 EUR 7.50 without a picture",
                          "begins b2", StartsWith("set aside b2: the path of the sample file is")));
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(WorkerTest, WithoutAFirstWaitItLeavesAtAnItemThatHasToWait) {
  queueHolds({{"b1", "/mnt/ext1/books/1"}, {"b2", "/mnt/ext1/books/2"}});
  EXPECT_THAT(hear(End::Postponed),
              ElementsAre("begins b1", "postponed 0: the store cannot be reached"));
  platform().http.answer(503, "");
  EXPECT_THAT(hear(End::Postponed),
              ElementsAre("begins b1", "postponed 1: the store returns HTTP status 503"));
  root.put(kJournalPath + std::string("/in the way"), "");
  EXPECT_THAT(hear(End::Postponed),
              ElementsAre("postponed 2: the journal of the queue cannot be used"));
  EXPECT_THAT(queued(), SizeIs(2));
}

TEST_F(WorkerTest, TellsItsListenerThatNobodyIsSignedIn) {
  storage->logoutOnlyFromStore();
  queueHolds({{"b1", "/mnt/ext1/books/1"}});
  EXPECT_THAT(hear(End::SignedOut), ElementsAre("begins b1", "signed out: nobody is signed in"));
}
