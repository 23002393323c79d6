#include "sample_app/Thumbnail.h"

#include "tests/sample_app/SampleAppTest.h"

using sample_app::fetchThumbnail;
using sample_app::Thumbnail;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const char kUrl[] = "https://a.example/1.png";

class ThumbnailTest : public SampleAppTest {
 protected:
  Thumbnail fetch(const std::string& body, long status = 200) {
    platform().http.answer(status, body);
    return fetchThumbnail(kUrl);
  }
};

}  // namespace

TEST_F(ThumbnailTest, IsFetchedWithoutCredentials) {
  const Thumbnail picture = fetch(kPng);
  EXPECT_TRUE(picture.isThere());
  EXPECT_EQ(picture.bytes, kPng);
  EXPECT_EQ(picture.extension, "png");
  ASSERT_THAT(platform().http.requests, SizeIs(1));
  EXPECT_EQ(platform().http.requests[0].method, "GET");
  EXPECT_EQ(platform().http.requests[0].url, kUrl);
  EXPECT_THAT(platform().http.requests[0].headers, IsEmpty());
}

TEST_F(ThumbnailTest, IsNamedAfterItsBytes) {
  EXPECT_EQ(fetch("\xff\xd8\xff\xe0").extension, "jpg");
  EXPECT_EQ(fetch("GIF89a...").extension, "gif");
  EXPECT_EQ(fetch("GIF87a...").extension, "gif");
  EXPECT_EQ(fetch("RIFF1234WEBPVP8 ").extension, "webp");
}

TEST_F(ThumbnailTest, WhatIsNoPictureIsNone) {
  for (const char* body : {"", "<html>", "PNG", "RIFF1234WAVE", "RIFF", "GIF8"}) {
    EXPECT_THAT(fetch(body).problem, HasSubstr("is not a PNG, JPEG, GIF or WebP image")) << body;
    EXPECT_EQ(fetch(body).bytes, "");
  }
}

TEST_F(ThumbnailTest, OnlyHttpsIsAsked) {
  for (const char* url : {"http://a.example/1.png", "file:///etc/passwd", "//a.example/1.png",
                          "/1.png", "https:/a.example"}) {
    EXPECT_THAT(fetchThumbnail(url).problem, HasSubstr("https")) << url;
  }
  EXPECT_THAT(fetchThumbnail("").problem, HasSubstr("names no picture"));
  EXPECT_THAT(platform().http.requests, IsEmpty());
  platform().http.answer(200, kPng);
  EXPECT_TRUE(fetchThumbnail("HTTPS://a.example/1.png").isThere());
}

TEST_F(ThumbnailTest, AnotherStatusIsTold) {
  EXPECT_THAT(fetch(kPng, 404).problem, HasSubstr("404"));
}

TEST_F(ThumbnailTest, AFailedTransferIsTold) {
  platform().http.failTransfer(28, 200, kPng);
  const Thumbnail picture = fetchThumbnail(kUrl);
  EXPECT_THAT(picture.problem, HasSubstr("28"));
  EXPECT_EQ(picture.bytes, "");
}

TEST_F(ThumbnailTest, TheLargestIsTakenAndALargerOneIsNot) {
  std::string body(sample_app::kLargestThumbnail, 'x');
  body.replace(0, sizeof kPng - 1, kPng);
  EXPECT_EQ(fetch(body).bytes.size(), body.size());
  EXPECT_THAT(fetch(body + "x").problem, HasSubstr("larger"));
}

TEST_F(ThumbnailTest, TheTransferIsWatched) {
  fetch(kPng);
  EXPECT_EQ(platform().callsOf({"PerformRequestWithHeaders"})[0],
            "PerformRequestWithHeaders no read progress");
}
