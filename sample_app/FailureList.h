// The list of the items that were set aside, for people and programs. Used by the one worker.

#ifndef SAMPLE_APP_FAILURELIST_H_
#define SAMPLE_APP_FAILURELIST_H_

#include <string>

#include "sample_app/LockedQueue.h"

namespace sample_app {

// The device path of the list: one JSON object per line, oldest first.
extern const char kFailureListPath[];

// Appends `item` and `reason`; the line is on the disk when this returns. First renames a list of
// more than 1 MiB to the same name with ".old", replacing an older one. Returns false, and logs, if
// the line could not be written.
bool listFailure(const SampleItem& item, const std::string& reason);

}  // namespace sample_app

#endif  // SAMPLE_APP_FAILURELIST_H_
