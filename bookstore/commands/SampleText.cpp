#include "bookstore/commands/SampleText.h"

#include "bookstore/Failure.h"
#include "sample_app/MetadataSource.h"

namespace bookstore {

std::string bookIdOf(const Arguments& arguments) {
  std::string bookId = arguments.text("BOOK");
  if (!sample_app::canBeAsked(bookId)) {
    throw Failure(kUsage, "nothing was sent or queued: " + std::string(sample_app::kNoIdentifier),
                  "1 to 255 ASCII characters without blanks, quotes and backslashes, such as MTAz");
  }
  return bookId;
}

}  // namespace bookstore
