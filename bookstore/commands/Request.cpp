#include "bookstore/commands/Request.h"

#include "bookstore/Failure.h"

namespace bookstore {

FailureListener::FailureListener(graphql::GraphQLApi& api) : api_(api) {
  api_.setErrorCb([this](int result, int status) { heard_ = std::make_pair(result, status); });
}

FailureListener::~FailureListener() {
  api_.setErrorCb(nullptr);
}

void FailureListener::throwIfAny(const std::string& url) const {
  if (heard_) {
    throw transferFailure(heard_->first, heard_->second, url);
  }
}

int FailureListener::status() const {
  return heard_ && heard_->first == 0 ? heard_->second : 0;
}

}  // namespace bookstore
