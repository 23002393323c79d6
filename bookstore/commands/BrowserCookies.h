// The cookies with which a browser is signed in as the customer. Holds no state.

#ifndef BOOKSTORE_COMMANDS_BROWSERCOOKIES_H_
#define BOOKSTORE_COMMANDS_BROWSERCOOKIES_H_

#include <map>
#include <string>

namespace bookstore {

struct BrowserCookies {
  std::string url;                            // the current store's web address
  std::map<std::string, std::string> values;  // name to value, for that address
};

// The cookies that the library gives to the device's own browser. Throws Failure when there are
// none.
BrowserCookies browserCookies();

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_BROWSERCOOKIES_H_
