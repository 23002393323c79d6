#include "sample_app/LogListener.h"

#include "base/Log.h"
#include "base/VisibleText.h"

using graphql::GraphQLApi;

namespace sample_app {

void LogListener::begins(const SampleItem&) {}

void LogListener::found(const GraphQLApi::SampleMetadata&) {}

void LogListener::done(const SampleItem&, const GraphQLApi::SampleMetadata&, const Thumbnail&) {
  postponedFor_.clear();
}

void LogListener::setAside(const SampleItem& item, const std::string& reason) {
  BASE_LOG_FAILURE("The sample %s of the book %s is set aside: %s",
                   base::visibleText(item.sampleFilePath).c_str(),
                   base::visibleText(item.bookId).c_str(), reason.c_str());
  postponedFor_.clear();
}

// Attempts can continue for days: only a new reason is logged.
void LogListener::postponed(Obstacle, const std::string& reason) {
  if (reason != postponedFor_) {
    BASE_LOG_FAILURE("The samples stay in the queue: %s; retrying", reason.c_str());
    postponedFor_ = reason;
  }
}

void LogListener::signedOut(const std::string& reason) {
  BASE_LOG_FAILURE("The samples stay in the queue: %s; sign in, and add a sample", reason.c_str());
}

}  // namespace sample_app
