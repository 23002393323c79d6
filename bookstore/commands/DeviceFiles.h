// The library's files on this machine. Holds no state; safe from any thread.

#ifndef BOOKSTORE_COMMANDS_DEVICEFILES_H_
#define BOOKSTORE_COMMANDS_DEVICEFILES_H_

#include <chrono>
#include <string>

namespace bookstore {

// The paths of the two files below the root folder.
std::string storeListFile();
std::string tokenFile();

// Whether `path` exists. Throws Failure when the system does not say.
bool fileExists(const std::string& path);

// The time since the file at `path` was changed; 0 for a time in the future. Throws Failure as
// above.
std::chrono::seconds timeSinceChange(const std::string& path);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_DEVICEFILES_H_
