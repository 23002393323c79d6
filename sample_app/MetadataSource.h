// Fetches metadata from the current store with the customer's session. Used by one thread.

#ifndef SAMPLE_APP_METADATASOURCE_H_
#define SAMPLE_APP_METADATASOURCE_H_

#include <memory>
#include <optional>
#include <string>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace sample_app {

class MetadataSource {
 public:
  enum class Outcome {
    Found,
    Unknown,      // the store has no such book: a retry does not help
    Unreachable,  // no network: a retry may help
    ServerError,  // the server returns another status: a retry may help
    LockFailed,   // the session cannot be locked
    SignedOut,    // nobody is signed in, or the session has expired
  };

  struct Lookup {
    Outcome outcome;
    std::string reason;  // why the outcome is not Found; for people
    graphql::GraphQLApi::SampleMetadata metadata;
  };

  explicit MetadataSource(std::shared_ptr<graphql::GraphQLStorageApi> storage);

  MetadataSource(const MetadataSource&) = delete;
  MetadataSource& operator=(const MetadataSource&) = delete;

  // Requests the book `bookId` from the current store, with the session that is saved now. If the
  // store refuses the access token, refreshes the tokens once and saves them. The session is locked
  // during the refresh.
  Lookup find(const std::string& bookId);

 private:
  Lookup request(const std::string& bookId);
  Lookup checkSession();
  std::optional<Lookup> refresh(const std::string& refusedToken);
  bool isSignedIn() const;
  Lookup failure(graphql::GraphQLApi::ApiError error) const;

  const std::shared_ptr<graphql::GraphQLStorageApi> storage_;
  graphql::GraphQLApi api_;
  int failedStatus_ = 0;  // of the last request; 0 if it was 200 or no response arrived
};

}  // namespace sample_app

#endif  // SAMPLE_APP_METADATASOURCE_H_
