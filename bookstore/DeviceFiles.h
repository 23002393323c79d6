// The library's files as the person finds them on this machine. Holds no state; safe from any
// thread.

#ifndef BOOKSTORE_DEVICEFILES_H_
#define BOOKSTORE_DEVICEFILES_H_

#include <string>

namespace bookstore {

// The paths of the two files below the root folder.
std::string storeListFile();
std::string tokenFile();

// Whether there is a file at `path`. Throws Failure when that cannot be seen.
bool fileExists(const std::string& path);

}  // namespace bookstore

#endif  // BOOKSTORE_DEVICEFILES_H_
