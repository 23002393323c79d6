#include <filesystem>

#include "tests/bookstore/SampleTest.h"

using support::queued;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const char kApplication[] = "/ombrel/bin/graphql_sample_metadata.app";
const char kFile[] = "/mnt/ext1/books/1.sample";

class SampleAddCommandTest : public bookstore_tests::SampleTest {
 protected:
  void applicationIsInstalled() {
    root.put(kApplication, "");
    std::filesystem::permissions(root.at(kApplication), std::filesystem::perms::owner_all);
  }

  void expectRefusal(const std::string& book, const std::string& file, const std::string& why) {
    EXPECT_EQ(run({"sample", "add", book, file}), bookstore::kUsage) << book << " " << file;
    EXPECT_THAT(err, HasSubstr(why));
    EXPECT_THAT(queued(), IsEmpty());
    EXPECT_THAT(fake::platform().tasks.started, IsEmpty());
  }
};

}  // namespace

TEST_F(SampleAddCommandTest, QueuesTheSampleAndStartsTheApplication) {
  signedIn();
  applicationIsInstalled();
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kDone);
  EXPECT_EQ(out, "Queued the sample of the book b1 for /mnt/ext1/books/1.sample\n");
  EXPECT_THAT(err, IsEmpty());
  EXPECT_THAT(queued(), ElementsAre("b1@/mnt/ext1/books/1.sample"));
  ASSERT_THAT(fake::platform().tasks.started, SizeIs(1));
  EXPECT_EQ(fake::platform().tasks.started[0].path, kApplication);
}

TEST_F(SampleAddCommandTest, GivesProgramsTheSame) {
  EXPECT_EQ(run({"sample", "add", "b1", kFile, "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["bookId"], "b1");
  EXPECT_EQ(json()["sampleFilePath"], kFile);
  EXPECT_EQ(json()["applicationInstalled"], false);
  applicationIsInstalled();
  run({"sample", "add", "b1", kFile, "--json"});
  EXPECT_EQ(json()["applicationInstalled"], true);
  EXPECT_THAT(queued(), SizeIs(2));
}

TEST_F(SampleAddCommandTest, WarnsWhenNothingWouldWorkOnTheQueue) {
  signedIn();
  const std::string warning =
      "bookstore: no program processes the queue: " + root.path() + kApplication +
      " is missing. Install the application there, or run \"bookstore sample work\".\n";
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kDone);
  EXPECT_EQ(err, warning);
  root.put(kApplication, "");  // but it cannot be run
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kDone);
  EXPECT_EQ(err, warning);
}

TEST_F(SampleAddCommandTest, SaysThatTheSampleWaitsForSomebodyToSignIn) {
  applicationIsInstalled();
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kDone);
  EXPECT_THAT(
      err,
      HasSubstr("the sample stays in the queue: nobody is signed in. Run \"bookstore sign-in\""));
  EXPECT_THAT(queued(), SizeIs(1));
}

TEST_F(SampleAddCommandTest, RefusesABookThatWouldBeSetAside) {
  const std::string why = " cannot be the uid of a book. Use 1 to 255 ASCII";
  for (const std::string& book : {std::string(), std::string("a b"), std::string("a\"b"),
                                  std::string("\xc3\xa4"), std::string(256, 'b')}) {
    expectRefusal(book, kFile, why);
  }
}

TEST_F(SampleAddCommandTest, RefusesAFileThatWouldBeSetAside) {
  expectRefusal("b1", "", "the path of the sample file is not absolute");
  expectRefusal("b1", "1.sample", "is not absolute. Use a path on the device, such as");
  expectRefusal("b1", "/mnt/../1.sample", "contains '..'");
  expectRefusal("b1", "/mnt/ext1/books/", "names a folder");
  expectRefusal("b1", "/mnt/ext1/films/1.sample", "cannot be used: No such file or directory");
}

TEST_F(SampleAddCommandTest, SaysThatTheQueueCannotBeLocked) {
  signedIn();
  queueCannotBeLocked();
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kLocalFailure);
  EXPECT_THAT(
      err, AllOf(HasSubstr("/tmp/sample.queue, cannot be opened and locked"), HasSubstr(". See ")));
  EXPECT_THAT(fake::platform().tasks.started, IsEmpty());
}

TEST_F(SampleAddCommandTest, SaysThatTheLibraryCouldNotWriteTheItem) {
  fake::platform().failAt("SerializeString");
  EXPECT_EQ(run({"sample", "add", "b1", kFile}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("the sample is not in the queue, /tmp/sample.queue"));
}

TEST_F(SampleAddCommandTest, SendsNothing) {
  EXPECT_EQ(run({"sample", "add", "b1", kFile, "--dry-run", "--curl"}), bookstore::kUsage);
  EXPECT_THAT(err, HasSubstr("\"sample add\" sends no request. Omit"));
  EXPECT_THAT(queued(), IsEmpty());
}
