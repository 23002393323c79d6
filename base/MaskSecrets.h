// Masks secrets in text that people read: log lines and printed requests. Has no state; safe from
// any thread.

#ifndef BASE_MASKSECRETS_H_
#define BASE_MASKSECRETS_H_

#include <string>

namespace base {

// The text that replaces each secret.
extern const char kSecretMask[];

// Returns a copy of `text` in which the mask replaces these secrets: the word after "Bearer"; the
// values of members, parameters, headers and cookies whose names contain token, password, secret or
// authorization; the customer's cookies; the password in a URL. Supports compact and styled JSON,
// JSON escaped in another string, shell text in single quotes, and text cut off within a value.
// Empty values, null, true and false are unchanged. In doubt it masks too much.
std::string maskSecrets(const std::string& text);

}  // namespace base

#endif  // BASE_MASKSECRETS_H_
