// The results for one sample: two files beside it. Used by the one worker.

#ifndef SAMPLE_APP_METADATAFILE_H_
#define SAMPLE_APP_METADATAFILE_H_

#include <string>

#include "base/WholeFile.h"
#include "graphql_api/GraphQLApi.h"
#include "sample_app/LockedQueue.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

// Places the picture at `path`.thumbnail.<extension>, if there is one, and then the metadata as
// JSON at `path`.json, each whole, on the disk and for its owner only. `path` is the sample file's
// on this machine. Returns why it failed, if it did; what stood there before then stays.
base::FileFailure placeMetadata(const std::string& path, const SampleItem& item,
                                const graphql::GraphQLApi::SampleMetadata& metadata,
                                const Thumbnail& thumbnail);

}  // namespace sample_app

#endif  // SAMPLE_APP_METADATAFILE_H_
