#include "sample_app/MetadataFile.h"

#include <cerrno>

#include "tests/sample_app/SampleAppTest.h"

using sample_app::placeMetadata;
using sample_app::Thumbnail;
using ::testing::ElementsAre;

namespace {

const char kSample[] = "/mnt/ext1/books/1.sample";

class MetadataFileTest : public SampleAppTest {
 protected:
  MetadataFileTest() {
    metadata.apiUrl = "https://a.example/graphql";
    metadata.uid = "MTAw";
    metadata.name = "T\xc3\xbcr";
    metadata.author = "Ada";
    metadata.price = "EUR 7.50";
    metadata.oldPrice = "EUR 9.99";
    metadata.thumbnailUrl = "https://a.example/1.png";
    picture.bytes = kPng;
    picture.extension = "png";
  }

  base::FileFailure place() {
    return placeMetadata(root.at(kSample), {"MTAw", kSample}, metadata, picture);
  }

  Json::Value document() { return parseJson(root.contentOf(std::string(kSample) + ".json")); }

  graphql::GraphQLApi::SampleMetadata metadata;
  Thumbnail picture;
};

}  // namespace

TEST_F(MetadataFileTest, HoldsAllThatIsShownOfTheSample) {
  ASSERT_FALSE(place());
  Json::Value expected;
  expected["bookId"] = "MTAw";
  expected["sampleFilePath"] = kSample;
  expected["apiUrl"] = "https://a.example/graphql";
  expected["name"] = "T\xc3\xbcr";
  expected["author"] = "Ada";
  expected["price"] = "EUR 7.50";
  expected["oldPrice"] = "EUR 9.99";
  expected["thumbnailUrl"] = "https://a.example/1.png";
  expected["thumbnail"] = "1.sample.thumbnail.png";
  EXPECT_EQ(document(), expected);
  EXPECT_EQ(root.contentOf(std::string(kSample) + ".thumbnail.png"), kPng);
}

TEST_F(MetadataFileTest, BothFilesAreForTheirOwnerOnlyAndNothingElseIsLeft) {
  ASSERT_FALSE(place());
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"),
              ElementsAre("1.sample.json", "1.sample.thumbnail.png", "readme"));
  EXPECT_EQ(root.modeOf(std::string(kSample) + ".json"), 0600U);
  EXPECT_EQ(root.modeOf(std::string(kSample) + ".thumbnail.png"), 0600U);
}

TEST_F(MetadataFileTest, NotesWhyThereIsNoPicture) {
  picture = Thumbnail();
  picture.problem = "status 404";
  ASSERT_FALSE(place());
  EXPECT_TRUE(document().isMember("thumbnail"));
  EXPECT_TRUE(document()["thumbnail"].isNull());
  EXPECT_EQ(document()["thumbnailProblem"].asString(), "status 404");
  EXPECT_THAT(root.namesIn("/mnt/ext1/books"), ElementsAre("1.sample.json", "readme"));
}

TEST_F(MetadataFileTest, AFailureOfEitherFileIsTold) {
  std::filesystem::create_directories(root.at(std::string(kSample) + ".json"));
  EXPECT_EQ(place().error, EISDIR);
  std::filesystem::remove(root.at(std::string(kSample) + ".thumbnail.png"));
  std::filesystem::remove(root.at(std::string(kSample) + ".json"));
  std::filesystem::create_directory(root.at(std::string(kSample) + ".thumbnail.png"));
  EXPECT_EQ(place().error, EISDIR);
  EXPECT_FALSE(std::filesystem::exists(root.at(std::string(kSample) + ".json")));
}

TEST_F(MetadataFileTest, ReplacesALinkAndNotWhatItNames) {
  root.put("/victim", "untouched");
  std::filesystem::create_symlink(root.at("/victim"), root.at(std::string(kSample) + ".json"));
  ASSERT_FALSE(place());
  EXPECT_EQ(root.contentOf("/victim"), "untouched");
  EXPECT_EQ(document()["bookId"].asString(), "MTAw");
}
