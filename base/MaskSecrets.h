// Masks secrets in text that people read: log lines and printed requests. Holds no state; safe from
// any thread.

#ifndef BASE_MASKSECRETS_H_
#define BASE_MASKSECRETS_H_

#include <string>

namespace base {

// The text that replaces each secret.
extern const char kSecretMask[];

// A copy of `text` in which the mask replaces: the word after "Bearer"; the values of members,
// parameters, headers and cookies whose names contain token, password, secret or authorization; the
// customer's cookies; the password in a URL. Reads JSON, compact, styled, or escaped in another
// string; shell text in single quotes; and text that is cut off within a value. Empty values, null,
// true and false are unchanged. In doubt it masks too much.
std::string maskSecrets(const std::string& text);

}  // namespace base

#endif  // BASE_MASKSECRETS_H_
