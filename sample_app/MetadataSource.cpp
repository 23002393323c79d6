#include "sample_app/MetadataSource.h"

#include <utility>

#include <json/json.h>

#include "base/BookId.h"
#include "base/DevicePaths.h"
#include "base/HttpResult.h"
#include "base/Settings.h"
#include "base/VisibleText.h"
#include "base/WholeFile.h"

using graphql::GraphQLApi;
using graphql::GraphQLStorageApi;

namespace sample_app {

namespace {

using Lookup = MetadataSource::Lookup;
using Outcome = MetadataSource::Outcome;

Lookup without(Outcome outcome, const std::string& reason) {
  return {outcome, reason, GraphQLApi::SampleMetadata()};
}

Lookup unreadable(const Json::Exception& exception) {
  return without(Outcome::Unknown,
                 std::string("the store's response cannot be read: ") + exception.what());
}

}  // namespace

MetadataSource::MetadataSource(std::shared_ptr<GraphQLStorageApi> storage)
    : storage_(std::move(storage)), api_(storage_) {
  api_.setErrorCb([this](int, int code) { failedStatus_ = code; });
}

Lookup MetadataSource::find(const std::string& bookId) {
  if (!base::isValidBookId(bookId)) {
    return without(Outcome::Unknown, "no store has a book with this identifier");
  }
  storage_->reload();
  if (!isSignedIn()) {
    return without(Outcome::SignedOut, "nobody is signed in");
  }
  const std::string token = storage_->accessToken();
  Lookup lookup = request(bookId);
  if (lookup.outcome != Outcome::SignedOut) {
    return lookup;
  }
  const std::optional<Lookup> problem = refresh(token);
  return problem ? *problem : request(bookId);
}

Lookup MetadataSource::request(const std::string& bookId) {
  failedStatus_ = 0;
  try {
    const GraphQLApi::SampleMetadata metadata =
        api_.sampleMetadata(storage_->currentStore(), bookId);
    if (metadata.error == GraphQLApi::Ok) {
      return {Outcome::Found, "", metadata};
    }
    if (!metadata.uid.empty()) {
      return without(Outcome::Unknown,
                     "the store returned another book: " + base::visibleText(metadata.uid));
    }
    return failedStatus_ == 0 && metadata.error == GraphQLApi::BadResponse
               ? checkSession()
               : failure(metadata.error);
  } catch (const Json::Exception& exception) {
    return unreadable(exception);
  }
}

// An older server ignores an expired token: it returns status 200 and no book. Only the customer's
// profile shows whether the session has expired.
Lookup MetadataSource::checkSession() {
  GraphQLStorageApi::UserInfo customer;
  const GraphQLApi::ApiError error = api_.userInfo(storage_->currentStore(), &customer);
  if (error == GraphQLApi::Ok) {
    return without(Outcome::Unknown, "the store does not know the book");
  }
  return failure(error);
}

std::optional<Lookup> MetadataSource::refresh(const std::string& refusedToken) {
  const base::FileLock lock(base::hostPath(base::kSessionPath));
  if (lock.failure()) {
    return without(Outcome::LockFailed, "the session cannot be locked: " + lock.failure().text());
  }
  storage_->reload();
  if (storage_->accessToken() != refusedToken && isSignedIn()) {
    return std::nullopt;  // another program has refreshed the tokens
  }
  if (!isSignedIn() || storage_->refreshToken().empty()) {
    return without(Outcome::SignedOut, "the session has expired");
  }
  const GraphQLStorageApi::LoginInfo login =
      api_.refreshTokens(storage_->currentStore(), storage_->refreshToken());
  if (login.errorInfo.error == 0 && !login.accessToken.empty()) {
    return std::nullopt;
  }
  const bool isTransferFailure = login.errorInfo.error == -1;
  return failure(isTransferFailure ? GraphQLApi::NetworkError : GraphQLApi::BadResponse);
}

bool MetadataSource::isSignedIn() const {
  return storage_->isLoggedIn() && storage_->currentStore().isValid();
}

// What a failed operation with the session means.
Lookup MetadataSource::failure(GraphQLApi::ApiError error) const {
  if (error == GraphQLApi::NetworkError) {
    return without(Outcome::Unreachable, "the store cannot be reached");
  }
  if (failedStatus_ == 0 || base::isSessionRefused(failedStatus_)) {
    return without(Outcome::SignedOut, "the store refuses the session");
  }
  return without(Outcome::ServerError,
                 "the store returns HTTP status " + std::to_string(failedStatus_));
}

}  // namespace sample_app
