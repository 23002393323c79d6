// What a browser needs to be the signed-in customer. Holds no state.

#ifndef BOOKSTORE_COMMANDS_BROWSERSESSION_H_
#define BOOKSTORE_COMMANDS_BROWSERSESSION_H_

#include <map>
#include <string>

namespace bookstore {

struct BrowserSession {
  std::string url;                             // the current store's web address
  std::map<std::string, std::string> cookies;  // name to value, for that address
};

// The session as the library gives it to the device's own browser. Throws Failure when there is
// none.
BrowserSession browserSession();

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_BROWSERSESSION_H_
