// The items that were set aside, for people and programs to read. Used by the one worker.

#ifndef SAMPLE_APP_FAILURELIST_H_
#define SAMPLE_APP_FAILURELIST_H_

#include <string>

#include "sample_app/LockedQueue.h"

namespace sample_app {

// The device path of the list: one JSON object per line, oldest first.
extern const char kFailureListPath[];

// Appends `item` and why nothing could be made of it; on the disk when this returns. A list of
// more than 1 MiB is first renamed to the same name with ".old", over the one before. False, and
// logged, when the line could not be written.
bool listFailure(const SampleItem& item, const std::string& reason);

}  // namespace sample_app

#endif  // SAMPLE_APP_FAILURELIST_H_
