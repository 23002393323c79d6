// The device paths that programs of a development machine share. The library has its own copy: it
// includes nothing of base/.

#ifndef BASE_DEVICEPATHS_H_
#define BASE_DEVICEPATHS_H_

namespace base {

// Configuration files, which the library writes.
constexpr char kStoreListPath[] = "/mnt/ext1/system/state/cache/store_list.cfg";
constexpr char kTokenPath[] = "/mnt/ext1/system/config/bookstore.cfg";

// The FileLock of this path belongs to the program that uses or changes the customer's session: the
// refresh token works once. A save of the token file takes another lock.
constexpr char kSessionPath[] = "/mnt/ext1/system/config/bookstore.cfg.session";

// The background application, which the library starts.
constexpr char kSampleApplicationPath[] = "/ombrel/bin/graphql_sample_metadata.app";

// The queue of samples. There is one per machine: it does not live below the root folder.
constexpr char kSampleQueuePath[] = "/tmp/sample.queue";

}  // namespace base

#endif  // BASE_DEVICEPATHS_H_
