// Who is told how a worker gets on. Called by the worker's thread.

#ifndef SAMPLE_APP_WORKLISTENER_H_
#define SAMPLE_APP_WORKLISTENER_H_

#include <string>

#include "graphql_api/GraphQLApi.h"
#include "sample_app/LockedQueue.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

// What another attempt may get around.
enum class Obstacle {
  Network,
  Server,  // it answers with another status
  Files,   // on this machine
};

// Reasons are for people, and may hold what a server sent, made visible.
class WorkListener {
 public:
  virtual ~WorkListener() = default;

  // The work on `item`, the oldest of the queue, begins. The queue's lock is free.
  virtual void begins(const SampleItem& item) = 0;

  // The store knows the item's book; its picture and its files are next.
  virtual void found(const graphql::GraphQLApi::SampleMetadata& metadata) = 0;

  // The item has its files, and is removed.
  virtual void done(const SampleItem& item, const graphql::GraphQLApi::SampleMetadata& metadata,
                    const Thumbnail& thumbnail) = 0;

  // The item is in the list of failures, and is removed.
  virtual void setAside(const SampleItem& item, const std::string& reason) = 0;

  // The item stays, and may end well another time.
  virtual void postponed(Obstacle obstacle, const std::string& reason) = 0;

  // The item stays: there is no session.
  virtual void signedOut(const std::string& reason) = 0;
};

}  // namespace sample_app

#endif  // SAMPLE_APP_WORKLISTENER_H_
