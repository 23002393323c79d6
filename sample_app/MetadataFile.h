// The results for one sample: two files beside the sample file. Used by the one worker.

#ifndef SAMPLE_APP_METADATAFILE_H_
#define SAMPLE_APP_METADATAFILE_H_

#include <string>

#include "base/WholeFile.h"
#include "graphql_api/GraphQLApi.h"
#include "sample_app/LockedQueue.h"
#include "sample_app/Thumbnail.h"

namespace sample_app {

// Writes the picture, if there is one, to `path`.thumbnail.<extension>, and then the metadata as
// JSON to `path`.json, each as a whole, on the disk and readable for its owner only. `path` is that
// of the sample file on this machine. On a failure, which is returned, the old files are unchanged.
base::FileFailure placeMetadata(const std::string& path, const SampleItem& item,
                                const graphql::GraphQLApi::SampleMetadata& metadata,
                                const Thumbnail& thumbnail);

}  // namespace sample_app

#endif  // SAMPLE_APP_METADATAFILE_H_
