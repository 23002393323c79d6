// The sample queue file and the entry point that fills it. The file's path is fixed, so the program
// has a private /tmp.

#include <dirent.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <thread>

#include "graphql_api/GraphQLHeader.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "tests/support/NewProcess.h"
#include "tests/support/PlatformTest.h"
#include "tests/support/SampleQueueFile.h"
#include "tests/support/SystemCallFaults.h"
#include "tests/support/TemporaryFolder.h"

using graphql::GraphQLSampleQueue;
using support::kQueuePath;
using support::SystemCallFaults;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const char kFiller[] = "/tmp/filler";
const char kOpenFailed[] = "Condition: \"-1 != fd_\", return(\"1\")]Open failed with ";
const char kCodingFailed[] = "Condition: \"0 == err\", return(\"-1\")]";
const uid_t kReader = 12345;  // any user except the owner of the queue
const char kApplication[] = "/ombrel/bin/graphql_sample_metadata.app";

using Item = GraphQLSampleQueue::SampleItem;

std::string text(const Item& item) {
  return item.bookId + "@" + item.sampleFilePath;
}

class SampleQueueTest : public PlatformTest {
 protected:
  SampleQueueTest() {
    support::removeQueue();
    ::umask(022);
  }

  void fileHolds(const std::string& bytes) {
    std::ofstream(kQueuePath, std::ios::binary | std::ios::trunc) << bytes;
  }

  static std::string fileBytes() { return support::contentOfFile(kQueuePath); }

  // One item in the fake platform's encoding.
  static std::string encoded(const std::string& bookId, const std::string& path) {
    return std::to_string(bookId.size()) + ":" + bookId + std::to_string(path.size()) + ":" + path;
  }

  std::vector<std::string> items() {
    std::vector<Item> found;
    EXPECT_EQ(queue.deserializeSampleItems(&found), 0);
    std::vector<std::string> texts;
    for (const Item& item : found) {
      texts.push_back(text(item));
    }
    return texts;
  }

  // The descriptors of this process, by number.
  static std::size_t openDescriptors() {
    std::size_t count = 0;
    DIR* folder = ::opendir("/proc/self/fd");
    while (::readdir(folder) != nullptr) {
      ++count;
    }
    ::closedir(folder);
    return count;
  }

  static bool isLocked() {
    const int descriptor = ::open(kQueuePath, O_RDONLY | O_CLOEXEC);
    const bool locked = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    ::close(descriptor);
    return locked;
  }

  // Runs `work`, including expectations, in a process of that user, without privileges. If changing
  // the user is not permitted, the process has the same user, without privileges.
  static void asUser(uid_t user, const std::function<void()>& work) {
    EXPECT_TRUE(support::passesInNewProcess([&] {
      if (::setresuid(user, user, user) != 0) {
        dropPrivileges();
      }
      work();
    }));
  }

  // Drops privileges, also of root, so that file modes apply.
  static void dropPrivileges() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    ASSERT_EQ(::syscall(SYS_capset, &header, none), 0);
  }

  static void fillDisk() {
    std::ofstream filler(kFiller, std::ios::binary);
    const std::string piece(1 << 16, 'x');
    while (filler << piece << std::flush) {
    }
  }

  GraphQLSampleQueue queue;
};

}  // namespace

// --- The lock ------------------------------------------------------------------------------------

TEST_F(SampleQueueTest, LockingCreatesAnEmptyFileAndHoldsItAlone) {
  EXPECT_EQ(queue.lockSampleQueueFile(), 0);
  EXPECT_EQ(fileBytes(), "");
  EXPECT_TRUE(isLocked());
  EXPECT_EQ(queue.unlockSampleQueueFile(), -1);
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, TheFileIsForEveryoneLessTheUmask) {
  ::umask(027);
  queue.lockSampleQueueFile();
  struct stat status = {};
  ASSERT_EQ(::stat(kQueuePath, &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0750U);
}

TEST_F(SampleQueueTest, LockingKeepsTheContent) {
  fileHolds("1:a1:b");
  queue.lockSampleQueueFile();
  EXPECT_EQ(fileBytes(), "1:a1:b");
}

TEST_F(SampleQueueTest, LockingAgainDropsTheFirstLock) {
  const std::size_t before = openDescriptors();
  queue.lockSampleQueueFile();
  EXPECT_EQ(queue.lockSampleQueueFile(), 0);
  EXPECT_EQ(openDescriptors(), before + 1);
  queue.unlockSampleQueueFile();
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, UnlockingWithoutALockDoesNothing) {
  EXPECT_EQ(queue.unlockSampleQueueFile(), -1);
  EXPECT_EQ(queue.unlockSampleQueueFile(), -1);
}

TEST_F(SampleQueueTest, DestructionDropsTheLock) {
  {
    GraphQLSampleQueue other;
    other.lockSampleQueueFile();
    EXPECT_TRUE(isLocked());
  }
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, TwoObjectsKeepEachOtherOut) {
  queue.lockSampleQueueFile();
  std::thread adder([] { GraphQLSampleQueue().addSample("b", "/s"); });
  // The item can only be added after the lock is released.
  for (int look = 0; look < 100; ++look) {
    EXPECT_EQ(fileBytes(), "");
    std::this_thread::yield();
  }
  queue.unlockSampleQueueFile();
  adder.join();
  EXPECT_THAT(items(), ElementsAre("b@/s"));
}

TEST_F(SampleQueueTest, AFileThatCannotBeOpenedIsLoggedWithItsErrno) {
  ASSERT_EQ(::mkdir(kQueuePath, 0755), 0);
  EXPECT_EQ(queue.lockSampleQueueFile(), 1);
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre(kOpenFailed + std::to_string(EISDIR)));
  EXPECT_EQ(platform().log.at(0).function,
            "int graphql::GraphQLSampleQueue::lockSampleQueueFile()");
}

// --- Adding, taking, removing --------------------------------------------------------------------

TEST_F(SampleQueueTest, ItemsComeBackInTheOrderInWhichTheyWereAdded) {
  queue.addSample("b1", "/s/1");
  queue.addSample("b2", "/s/2");
  queue.addSample("b1", "/s/3");
  EXPECT_EQ(fileBytes(), encoded("b1", "/s/1") + encoded("b2", "/s/2") + encoded("b1", "/s/3"));
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b2@/s/2", "b1@/s/3"));
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, TheOldestItemIsTakenAndStays) {
  queue.addSample("b1", "/s/1");
  queue.addSample("b2", "/s/2");
  EXPECT_EQ(text(queue.getNextSample()), "b1@/s/1");
  EXPECT_EQ(text(queue.getNextSample()), "b1@/s/1");
  EXPECT_THAT(items(), SizeIs(2));
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, RemovingErasesOnlyTheOldestMatch) {
  queue.addSample("b1", "/s/1");
  queue.addSample("b2", "/s/2");
  queue.addSample("b1", "/s/3");
  EXPECT_EQ(queue.removeSample("b1"), 1);
  EXPECT_THAT(items(), ElementsAre("b2@/s/2", "b1@/s/3"));
  EXPECT_FALSE(isLocked());
}

TEST_F(SampleQueueTest, RemovingAnUnknownBookRewritesTheSameItems) {
  queue.addSample("b1", "/s/1");
  const timespec longAgo[2] = {};
  ASSERT_EQ(::utimensat(AT_FDCWD, kQueuePath, longAgo, 0), 0);
  EXPECT_EQ(queue.removeSample("B1"), 1);
  EXPECT_EQ(fileBytes(), encoded("b1", "/s/1"));
  struct stat status = {};
  ASSERT_EQ(::stat(kQueuePath, &status), 0);
  EXPECT_NE(status.st_mtime, 0);
}

TEST_F(SampleQueueTest, ItemsMayBeEmptyOrHoldAnyBytes) {
  const std::string bytes("\0\n\xff:9", 5);
  queue.addSample("", "");
  queue.addSample(bytes, bytes);
  EXPECT_THAT(items(), ElementsAre("@", bytes + "@" + bytes));
  EXPECT_EQ(queue.removeSample(""), 1);
  EXPECT_THAT(items(), ElementsAre(bytes + "@" + bytes));
}

TEST_F(SampleQueueTest, AnEmptyQueueGivesAnEmptyItemAndLeavesAnEmptyFile) {
  EXPECT_EQ(text(queue.getNextSample()), "@");
  struct stat status = {};
  ASSERT_EQ(::stat(kQueuePath, &status), 0);
  EXPECT_EQ(status.st_size, 0);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(SampleQueueTest, ReadingAppendsToTheVector) {
  fileHolds(encoded("b", "/s"));
  std::vector<Item> found{{"old", "item"}};
  queue.deserializeSampleItems(&found);
  ASSERT_THAT(found, SizeIs(2));
  EXPECT_EQ(text(found[0]), "old@item");
  EXPECT_EQ(text(found[1]), "b@/s");
}

TEST_F(SampleQueueTest, WritingReplacesTheFile) {
  fileHolds(std::string(1000, 'x'));
  EXPECT_EQ(queue.serializeSampleItems({{"b", "/s"}}), 0);
  EXPECT_EQ(fileBytes(), encoded("b", "/s"));
  EXPECT_EQ(queue.serializeSampleItems({}), 0);
  EXPECT_EQ(fileBytes(), "");
}

// --- Without the lock ----------------------------------------------------------------------------

TEST_F(SampleQueueTest, WithoutTheLockNothingIsAdded) {
  ASSERT_EQ(::mkdir(kQueuePath, 0755), 0);
  queue.addSample("b", "/s");
  EXPECT_EQ(platform().logTexts(kFailureLevel).at(1),
            "Condition: \"lockSampleQueueFile()\", return]");
  EXPECT_THAT(platform().callsOf({"SerializeString", "DeserializeString"}), IsEmpty());
}

TEST_F(SampleQueueTest, WithoutTheLockTakingAndRemovingGoOn) {
  ASSERT_EQ(::mkdir(kQueuePath, 0755), 0);
  const std::size_t before = openDescriptors();
  EXPECT_EQ(queue.removeSample("b"), 1);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre(kOpenFailed + std::to_string(EISDIR),
                          kOpenFailed + std::to_string(EISDIR), kCodingFailed));
}

TEST_F(SampleQueueTest, AFileThatMayOnlyBeReadIsReadWithoutTheLock) {
  fileHolds(encoded("b1", "/s/1"));
  ASSERT_EQ(::chmod(kQueuePath, 0444), 0);
  asUser(kReader, [this] {
    queue.addSample("b2", "/s/2");
    EXPECT_EQ(queue.removeSample("b1"), 1);
    EXPECT_EQ(text(queue.getNextSample()), "b1@/s/1");
    EXPECT_EQ(platform().logTexts(kFailureLevel).at(0), kOpenFailed + std::to_string(EACCES));
  });
  EXPECT_EQ(fileBytes(), encoded("b1", "/s/1"));
}

// With and without the kernel's protection of files in folders such as /tmp.
TEST_F(SampleQueueTest, UsersShareAQueueThatTheOwnerOfTmpMadeForAll) {
  fileHolds("");
  ASSERT_EQ(::chmod(kQueuePath, 0666), 0);
  asUser(kReader, [this] { queue.addSample("b1", "/s/1"); });
  asUser(kReader + 1, [this] { queue.addSample("b2", "/s/2"); });
  EXPECT_EQ(queue.removeSample("b1"), 1);
  EXPECT_THAT(items(), ElementsAre("b2@/s/2"));
}

TEST_F(SampleQueueTest, APipeInPlaceOfTheFileHoldsNobodyUp) {
  ASSERT_EQ(::mkfifo(kQueuePath, 0644), 0);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  EXPECT_EQ(queue.removeSample("b"), 1);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed));
}

TEST_F(SampleQueueTest, AFullDiskCrashesNothingAndTheNextItemIsQueuedAgain) {
  const std::size_t before = openDescriptors();
  fillDisk();
  queue.addSample("b1", std::string(100000, 's'));
  EXPECT_THAT(items(), SizeIs(::testing::Le(1U)));
  EXPECT_EQ(openDescriptors(), before);
  ASSERT_EQ(::unlink(kFiller), 0);
  queue.addSample("b2", "/s/2");
  EXPECT_EQ(items().back(), "b2@/s/2");
}

TEST_F(SampleQueueTest, ADanglingLinkIsFollowedWhereItCanBe) {
  ASSERT_EQ(::symlink("/tmp/nowhere/sample.queue", kQueuePath), 0);
  queue.addSample("b", "/s");
  EXPECT_EQ(text(queue.getNextSample()), "@");
  const std::string openFailed = kOpenFailed + std::to_string(ENOENT);
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre(openFailed, "Condition: \"lockSampleQueueFile()\", return]", openFailed,
                          kCodingFailed));
}

// --- Damage --------------------------------------------------------------------------------------

TEST_F(SampleQueueTest, ATruncatedItemIsLoggedAndAppendedWithWhatWasRead) {
  fileHolds(encoded("b1", "/s/1") + "2:b2");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b2@/s/1"));
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed));
}

TEST_F(SampleQueueTest, DamageBehindGoodItemsNeverLosesThem) {
  fileHolds(encoded("b1", "/s/1") + "garbage");
  queue.addSample("b2", "/s/2");
  const std::vector<std::string> found = items();
  ASSERT_GE(found.size(), 2U);
  EXPECT_EQ(found.front(), "b1@/s/1");
  EXPECT_EQ(found.back(), "b2@/s/2");
}

TEST_F(SampleQueueTest, AddingEncodesEveryItemAgain) {
  fileHolds("01:a1:b" + encoded("b1", "/s/1") + "2:b2");
  queue.addSample("b3", "/s/3");
  EXPECT_EQ(fileBytes(), encoded("a", "b") + encoded("b1", "/s/1") + encoded("b2", "/s/1") +
                             encoded("b3", "/s/3"));
  EXPECT_THAT(platform().callsOf({"SerializeString"}), SizeIs(8));
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed));
}

TEST_F(SampleQueueTest, RemovingFindsTheDamagedItemToo) {
  fileHolds(encoded("b1", "/s/1") + encoded("b3", "/s/3") + "2:b2");
  queue.removeSample("b1");
  EXPECT_EQ(fileBytes(), encoded("b3", "/s/3") + encoded("b2", "/s/3"));
  queue.removeSample("b2");
  EXPECT_EQ(fileBytes(), encoded("b3", "/s/3"));
}

TEST_F(SampleQueueTest, ADamagedItemThatCannotBeEncodedEitherIsLeftOut) {
  fileHolds(encoded("b1", "/s/1") + "2:b2");
  platform().failAt("SerializeString", 3);
  queue.addSample("b3", "/s/3");
  EXPECT_EQ(fileBytes(), encoded("b1", "/s/1") + encoded("b3", "/s/3"));
}

TEST_F(SampleQueueTest, AnyBytesAreReadToAnEnd) {
  std::mt19937 random(4);
  const std::size_t before = openDescriptors();
  for (int round = 0; round < 500; ++round) {
    std::string bytes(random() % 200, '\0');
    for (char& byte : bytes) {
      byte = "0123:ab\xff"[random() % 8];
    }
    fileHolds(bytes);
    queue.getNextSample();
    queue.addSample("new", "/s");
    EXPECT_EQ(items().back(), "new@/s") << bytes;
    EXPECT_EQ(queue.removeSample("new"), 1);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(SampleQueueTest, AHundredMegabytesOfDamageHideNeitherTheFirstItemNorANewOne) {
  fileHolds(encoded("b1", "/s/1") + std::string(100 << 20, 'x'));
  EXPECT_EQ(text(queue.getNextSample()), "b1@/s/1");
  queue.addSample("b2", "/s/2");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b1@/s/1", "b2@/s/2"));
}

TEST_F(SampleQueueTest, AnItemThatCannotBeReadIsTakenWithWhatWasRead) {
  fileHolds("2:b1");
  EXPECT_EQ(text(queue.getNextSample()), "b1@");
  EXPECT_THAT(platform().logTexts(kFailureLevel), SizeIs(1));
}

TEST_F(SampleQueueTest, ADecoderThatGivesUpWithoutReadingEndsTheLoop) {
  fileHolds(encoded("b1", "/s/1"));
  platform().failAt("DeserializeString");
  EXPECT_THAT(items(), ElementsAre("@"));
}

TEST_F(SampleQueueTest, AnItemThatCannotBeWrittenIsLeftOut) {
  platform().failAt("SerializeString", 4);
  EXPECT_EQ(queue.serializeSampleItems({{"b1", "/s/1"}, {"b2", "/s/2"}, {"b3", "/s/3"}}), 0);
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b3@/s/3"));
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed));
}

TEST_F(SampleQueueTest, OneItemIsWrittenAndReadAlone) {
  std::ostringstream out;
  EXPECT_EQ(queue.serializeSampleItem({"b", "/s"}, out), 0);
  std::istringstream in(out.str());
  Item item;
  EXPECT_EQ(queue.deserializeSampleItem(in, &item), 0);
  EXPECT_EQ(text(item), "b@/s");
}

TEST_F(SampleQueueTest, AFailedFirstStringKeepsTheSecondFromBeingTried) {
  std::ostringstream out;
  platform().failAt("SerializeString");
  EXPECT_EQ(queue.serializeSampleItem({"b", "/s"}, out), -1);
  EXPECT_EQ(out.str(), "");
  std::istringstream in("1:b2:/s");
  Item item;
  platform().failAt("DeserializeString");
  EXPECT_EQ(queue.deserializeSampleItem(in, &item), -1);
  EXPECT_THAT(platform().callsOf({"SerializeString", "DeserializeString"}), SizeIs(2));
}

TEST_F(SampleQueueTest, AnExceptionOfTheEncodingDropsTheLockAndLeavesTheFile) {
  fileHolds(encoded("b1", "/s/1"));
  platform().throwAt("SerializeString");
  EXPECT_THROW(queue.addSample("b", "/s"), fake::Failure);
  EXPECT_FALSE(isLocked());
  platform().throwAt("SerializeString");
  EXPECT_THROW(queue.removeSample("b"), fake::Failure);
  EXPECT_FALSE(isLocked());
  platform().throwAt("DeserializeString");
  EXPECT_THROW(queue.getNextSample(), fake::Failure);
  EXPECT_FALSE(isLocked());
  EXPECT_EQ(fileBytes(), encoded("b1", "/s/1"));
}

TEST_F(SampleQueueTest, ADamagedItemThatTheDecoderGetsOverHidesNoneBehindIt) {
  fileHolds(encoded("b1", "/s/1") + encoded("b2", "/s/2") + encoded("b3", "/s/3"));
  // The path of the second item is not read; decoding continues from there.
  platform().failAt("DeserializeString", 4);
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b2@/s/1", "/s/2@b3", "/s/3@b3"));
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed, kCodingFailed));
}

// --- Failing system calls ------------------------------------------------------------------------

TEST_F(SampleQueueTest, ALockThatFailsOrIsInterruptedGivesOneAndClosesTheDescriptor) {
  const std::size_t before = openDescriptors();
  for (const int error : {EINTR, ENOLCK}) {
    SystemCallFaults faults;
    faults.fail("flock", error);
    EXPECT_EQ(queue.lockSampleQueueFile(), 1);
    EXPECT_EQ(faults.count("flock"), 1);
  }
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(SampleQueueTest, ShortReadsAndWritesGoOnWithWhatIsLeft) {
  fileHolds(encoded("b1", "/s/1") + encoded("b2", "/s/2"));
  SystemCallFaults faults;
  faults.transferAtMost(3);
  queue.addSample("b3", "/s/3");
  EXPECT_GT(faults.count("read"), 5);
  EXPECT_GT(faults.count("write"), 5);
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b2@/s/2", "b3@/s/3"));
}

TEST_F(SampleQueueTest, InterruptedCallsAreMadeAgain) {
  fileHolds(encoded("b1", "/s/1"));
  SystemCallFaults faults;
  faults.transferAtMost(3);
  for (const char* call : {"read", "write", "ftruncate"}) {
    faults.fail(call, EINTR, 1, 2);
  }
  faults.fail("open", EINTR, 2);  // the first open() is for the lock
  queue.addSample("b2", "/s/2");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b2@/s/2"));
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(SampleQueueTest, AFileThatShrinksWhileItIsReadEndsTheLoop) {
  const std::string first = encoded("b1", "/s/1");
  fileHolds(first + encoded("b2", "/s/2"));
  SystemCallFaults faults;
  faults.transferAtMost(first.size());
  faults.endOfFileAtRead(2);
  EXPECT_THAT(items(), ElementsAre("b1@/s/1"));
}

TEST_F(SampleQueueTest, AFileThatCannotBeReadIsNotRewritten) {
  const std::string before = encoded("b1", "/s/1") + encoded("b2", "/s/2");
  const std::size_t descriptors = openDescriptors();
  for (const std::string call : {"open", "fstat", "read"}) {
    for (const int error : {EIO, EMFILE, EAGAIN, EACCES}) {
      fileHolds(before);
      const int nth = call == "open" ? 2 : 1;  // the first open() is for the lock
      {
        SystemCallFaults faults;
        faults.fail(call, error, nth);
        queue.addSample("b3", "/s/3");
      }
      {
        SystemCallFaults faults;
        faults.fail(call, error, nth);
        EXPECT_EQ(queue.removeSample("b1"), 1);
      }
      EXPECT_EQ(fileBytes(), before) << call << " " << error;
    }
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(SampleQueueTest, AFileThatIsGoneWhenItIsReadIsWrittenAgain) {
  SystemCallFaults faults;
  faults.fail("open", ENOENT, 2);  // the reader's: the lock's is the first
  queue.addSample("b1", "/s/1");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1"));
}

TEST_F(SampleQueueTest, AReadThatFailsInTheMiddleRewritesNothing) {
  const std::string before = encoded("b1", "/s/1") + encoded("b2", "/s/2");
  fileHolds(before);
  SystemCallFaults faults;
  faults.transferAtMost(5);
  faults.fail("read", EIO, 2);
  queue.addSample("b3", "/s/3");
  EXPECT_EQ(fileBytes(), before);
}

TEST_F(SampleQueueTest, OfAFileThatCannotBeReadTheNextItemIsEmptyAndTheDecodingLogged) {
  fileHolds(encoded("b1", "/s/1"));
  SystemCallFaults faults;
  faults.fail("read", EIO);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed));
}

TEST_F(SampleQueueTest, AFileThatCannotBeOpenedForWritingStaysAndEachItemIsLogged) {
  const std::string before = encoded("b1", "/s/1");
  fileHolds(before);
  SystemCallFaults faults;
  faults.fail("open", EMFILE, 3);  // after those for the lock and the reader
  queue.addSample("b2", "/s/2");
  EXPECT_EQ(fileBytes(), before);
  EXPECT_THAT(platform().logTexts(kFailureLevel), ElementsAre(kCodingFailed, kCodingFailed));
  EXPECT_THAT(platform().callsOf({"SerializeString"}),
              ElementsAre("SerializeString b1", "SerializeString b2"));
}

TEST_F(SampleQueueTest, AFileThatCannotBeTruncatedStays) {
  const std::string before = encoded("b1", "/s/1") + encoded("b2", "/s/2");
  fileHolds(before);
  SystemCallFaults faults;
  faults.fail("ftruncate", EIO);
  EXPECT_EQ(queue.removeSample("b1"), 1);
  EXPECT_EQ(fileBytes(), before);
}

TEST_F(SampleQueueTest, TheContentIsCompleteBeforeTheFileIsTruncated) {
  fileHolds(encoded("b1", "/s/1"));
  SystemCallFaults faults;
  queue.addSample("b2", "/s/2");
  EXPECT_EQ(faults.count("ftruncate"), 1);
  EXPECT_EQ(faults.count("write"), 1);
  EXPECT_EQ(faults.count("read"), 1);
}

// --- Other kinds of files at the path ------------------------------------------------------------

TEST_F(SampleQueueTest, AnEmptyDeviceInPlaceOfTheFileIsAnEmptyQueue) {
  ASSERT_EQ(::symlink("/dev/null", kQueuePath), 0);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  queue.addSample("b", "/s");
  EXPECT_EQ(queue.removeSample("b"), 1);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(platform().log, IsEmpty());
}

TEST_F(SampleQueueTest, ADeviceWithoutAnEndHoldsNobodyUp) {
  ASSERT_EQ(::symlink("/dev/zero", kQueuePath), 0);
  EXPECT_EQ(text(queue.getNextSample()), "@");
  queue.addSample("b", "/s");
  EXPECT_EQ(queue.removeSample("b"), 1);
  EXPECT_THAT(items(), IsEmpty());
  EXPECT_THAT(platform().callsOf({"SerializeString"}), IsEmpty());
}

// --- The entry point -----------------------------------------------------------------------------

TEST_F(SampleQueueTest, ARequestIsQueuedAndTheApplicationStarted) {
  addSample("b1", "/s/1");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1"));
  EXPECT_THAT(platform().callsOf({"FindTaskByAppName", "NewTask"}),
              ElementsAre(std::string("FindTaskByAppName ") + kApplication,
                          std::string("NewTask ") + kApplication));
  const fake::Task& task = platform().tasks.started.at(0);
  EXPECT_THAT(task.arguments, ElementsAre(kApplication));
  EXPECT_EQ(task.appName, "graphql_sample_metadata.app");
  EXPECT_EQ(task.name, "graphql_sample_metadata.app");
  EXPECT_EQ(task.reserved, nullptr);
  EXPECT_EQ(task.flags, 37U);
}

TEST_F(SampleQueueTest, ARunningApplicationIsLeftToFindTheItem) {
  platform().tasks.running = 12;
  addSample("b1", "/s/1");
  addSample("b1", "/s/1");
  EXPECT_THAT(items(), ElementsAre("b1@/s/1", "b1@/s/1"));
  EXPECT_THAT(platform().tasks.started, IsEmpty());
}

TEST_F(SampleQueueTest, ANegativeAnswerMeansThatNoApplicationRuns) {
  platform().tasks.running = -1;
  addSample("b1", "/s/1");
  EXPECT_THAT(platform().tasks.started, SizeIs(1));
}

TEST_F(SampleQueueTest, ARequestWithoutABookIsRefusedFirst) {
  addSample(nullptr, nullptr);
  addSample("", "/s");
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre("Condition: \"bookId && *bookId\", return]",
                          "Condition: \"bookId && *bookId\", return]"));
  EXPECT_EQ(platform().log.at(0).function, "void addSample(const char *, const char *)");
  EXPECT_THAT(platform().callsOf({"FindTaskByAppName", "NewTask"}), IsEmpty());
  EXPECT_NE(::access(kQueuePath, F_OK), 0);
}

TEST_F(SampleQueueTest, ARequestWithoutAFileIsRefused) {
  addSample("b", nullptr);
  addSample("b", "");
  EXPECT_THAT(platform().logTexts(kFailureLevel),
              ElementsAre("Condition: \"sampleFilePath && *sampleFilePath\", return]",
                          "Condition: \"sampleFilePath && *sampleFilePath\", return]"));
  EXPECT_EQ(platform().log.at(0).function, "void addSample(const char *, const char *)");
  EXPECT_NE(::access(kQueuePath, F_OK), 0);
}

TEST_F(SampleQueueTest, TheApplicationIsStartedEvenIfTheQueueCannotBeLocked) {
  ASSERT_EQ(::mkdir(kQueuePath, 0755), 0);
  addSample("b", "/s");
  EXPECT_THAT(platform().tasks.started, SizeIs(1));
}

TEST_F(SampleQueueTest, NoDescriptorOfTheQueueIsOpenWhenTheApplicationIsStarted) {
  const std::size_t before = openDescriptors();
  std::size_t atStart = 0;
  platform().tasks.onStart = [&] { atStart = openDescriptors(); };
  addSample("b", "/s");
  EXPECT_EQ(atStart, before);
}
