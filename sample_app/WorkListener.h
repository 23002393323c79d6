// Receives the progress of a worker. Called by the worker's thread.

#ifndef SAMPLE_APP_WORKLISTENER_H_
#define SAMPLE_APP_WORKLISTENER_H_

#include <string>

#include "graphql_api/GraphQLApi.h"
#include "sample_app/LockedQueue.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

// What can be different at the next attempt.
enum class Obstacle {
  Network,
  Server,  // it returns another status
  Files,   // on this machine
};

// Reasons are for people. They can contain text of a server, with control characters escaped.
class WorkListener {
 public:
  virtual ~WorkListener() = default;

  // The work on `item`, the oldest of the queue, begins. The queue is not locked.
  virtual void begins(const SampleItem& item) = 0;

  // The store has returned the item's book. Next are its picture and its files.
  virtual void found(const graphql::GraphQLApi::SampleMetadata& metadata) = 0;

  // The item has its files, and is removed.
  virtual void done(const SampleItem& item, const graphql::GraphQLApi::SampleMetadata& metadata,
                    const Thumbnail& thumbnail) = 0;

  // The item is in the list of failures, and is removed.
  virtual void setAside(const SampleItem& item, const std::string& reason) = 0;

  // The item stays in the queue; the next attempt may succeed.
  virtual void postponed(Obstacle obstacle, const std::string& reason) = 0;

  // The item stays in the queue: there is no session.
  virtual void signedOut(const std::string& reason) = 0;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKLISTENER_H_
