// The queue of samples as the commands see it: every function takes its lock, waits for it, and
// throws Failure when locking fails. Used by one thread.

#ifndef BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_
#define BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_

#include <string>
#include <vector>

#include <json/forwards.h>

#include "sample_app/LockedQueue.h"

namespace bookstore {

using sample_app::SampleItem;

// Every item, oldest first.
std::vector<SampleItem> queuedSamples();

// The item that the library gives to a worker. Throws Failure when there is none.
SampleItem oldestSample();

// Removes the oldest item of the book and returns it. Throws Failure when there is none, and when
// the queue cannot be rewritten.
SampleItem removeSample(const std::string& bookId);

// The item with the names of its members.
Json::Value toJson(const SampleItem& item);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_SAMPLEQUEUE_H_
