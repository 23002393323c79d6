// The library's files as the person finds them on this machine. Holds no state; safe from any
// thread.

#ifndef BOOKSTORE_COMMANDS_DEVICEFILES_H_
#define BOOKSTORE_COMMANDS_DEVICEFILES_H_

#include <chrono>
#include <string>

namespace bookstore {

// The paths of the two files below the root folder.
std::string storeListFile();
std::string tokenFile();

// Whether there is a file at `path`. Throws Failure when that cannot be seen.
bool fileExists(const std::string& path);

// How long ago the file at `path` was changed; 0 for one from the future. Throws Failure as above.
std::chrono::seconds timeSinceChange(const std::string& path);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_DEVICEFILES_H_
