// The current store as the source of metadata, with the customer's session behind it. Used by one
// thread.

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
    Unknown,      // the store has no such book: asking again is of no use
    Unreachable,  // no network: later it may work
    ServerError,  // the server answers with another status: later it may work
    LockFailed,   // the session's lock cannot be taken
    SignedOut,    // nobody is signed in, or the session has ended
  };

  struct Lookup {
    Outcome outcome;
    std::string reason;  // why it is not Found; for people
    graphql::GraphQLApi::SampleMetadata metadata;
  };

  explicit MetadataSource(std::shared_ptr<graphql::GraphQLStorageApi> storage);

  MetadataSource(const MetadataSource&) = delete;
  MetadataSource& operator=(const MetadataSource&) = delete;

  // Asks the current store for the book `bookId`, with the session as other programs left it. A
  // token that is refused is refreshed once, and the new ones are saved; meanwhile programs that
  // keep to the lock of the session wait.
  Lookup find(const std::string& bookId);

 private:
  Lookup ask(const std::string& bookId);
  Lookup checkSession();
  std::optional<Lookup> refresh(const std::string& refusedToken);
  bool isSignedIn() const;
  Lookup failure(graphql::GraphQLApi::ApiError error) const;

  const std::shared_ptr<graphql::GraphQLStorageApi> storage_;
  graphql::GraphQLApi api_;
  int failedStatus_ = 0;  // of the last request; 0 when it was 200 or none arrived
};

}  // namespace sample_app

#endif  // SAMPLE_APP_METADATASOURCE_H_
