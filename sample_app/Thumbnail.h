// The cover picture of a sample, fetched from the store. Safe from any thread.

#ifndef SAMPLE_APP_THUMBNAIL_H_
#define SAMPLE_APP_THUMBNAIL_H_

#include <cstddef>
#include <string>

namespace sample_app {

constexpr std::size_t kLargestThumbnail = 4UL * 1024 * 1024;

// A picture, or the problem with it.
struct Thumbnail {
  std::string bytes;      // as the server sent them
  std::string extension;  // detected from the bytes: "png", "jpg", "gif" or "webp"
  std::string problem;    // empty: none

  bool isThere() const { return problem.empty(); }
};

// Fetches the picture at `url`, which must be an https URL. Sends no credentials: the server may
// not be the store's. Waits at most 30 or 31 seconds. It is a problem if the status is not 200, if
// the body is larger than kLargestThumbnail, or if the body is not a PNG, JPEG, GIF or WebP image.
Thumbnail fetchThumbnail(const std::string& url);

}  // namespace sample_app

#endif  // SAMPLE_APP_THUMBNAIL_H_
