// Takes secrets out of text that people read: log lines and printed requests. Holds no state; safe
// from any thread.

#ifndef BASE_MASKSECRETS_H_
#define BASE_MASKSECRETS_H_

#include <string>

namespace base {

// What stands in place of each secret.
extern const char kSecretMask[];

// A copy of `text` with the mask in place of what follows "Bearer", of the values of members,
// parameters, headers and cookies whose names say token, password, secret or authorization, of the
// customer's cookies, and of the password in a URL. Knows JSON, compact or styled, also where it
// stands escaped in another string, shell text in single quotes, and text cut off within a value.
// Empty values and null, true and false stay. In doubt it masks too much.
std::string maskSecrets(const std::string& text);

}  // namespace base

#endif  // BASE_MASKSECRETS_H_
