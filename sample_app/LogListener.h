// Logs why items were not processed, for a worker without a user interface. Used by one thread.

#ifndef SAMPLE_APP_LOGLISTENER_H_
#define SAMPLE_APP_LOGLISTENER_H_

#include <string>

#include "sample_app/WorkListener.h"

namespace sample_app {

class LogListener : public WorkListener {
 public:
  void begins(const SampleItem& item) override;
  void found(const graphql::GraphQLApi::SampleMetadata& metadata) override;
  void done(const SampleItem& item, const graphql::GraphQLApi::SampleMetadata& metadata,
            const Thumbnail& thumbnail) override;
  void setAside(const SampleItem& item, const std::string& reason) override;
  void postponed(Obstacle obstacle, const std::string& reason) override;
  void signedOut(const std::string& reason) override;

 private:
  std::string postponedFor_;  // the reason that was logged last; empty after a success
};

}  // namespace sample_app

#endif  // SAMPLE_APP_LOGLISTENER_H_
