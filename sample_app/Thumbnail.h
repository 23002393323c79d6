// The cover picture of a sample, fetched from the store. Safe from any thread.

#ifndef SAMPLE_APP_THUMBNAIL_H_
#define SAMPLE_APP_THUMBNAIL_H_

#include <cstddef>
#include <string>

namespace sample_app {

constexpr std::size_t kLargestThumbnail = 4UL * 1024 * 1024;

// A picture, or why there is none.
struct Thumbnail {
  std::string bytes;      // as the server sent them
  std::string extension;  // what the bytes are, whatever their sender calls them: "png" and so on
  std::string problem;    // empty: none

  bool isThere() const { return problem.empty(); }
};

// Fetches the picture at `url`, which has to be an https one, without any credentials: it need not
// be the store's own server. Waits at most 30 seconds, or a second longer. No picture is an answer
// with another status than 200, a body larger than kLargestThumbnail, and one that is no PNG, JPEG,
// GIF or WebP file.
Thumbnail fetchThumbnail(const std::string& url);

}  // namespace sample_app

#endif  // SAMPLE_APP_THUMBNAIL_H_
