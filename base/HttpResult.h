// The numbers with which an HTTP exchange ends, as the runner of a development machine returns them
// and its callers read them.

#ifndef BASE_HTTPRESULT_H_
#define BASE_HTTPRESULT_H_

namespace base {

constexpr int kHttpOk = 200;
constexpr int kHttpUnauthorized = 401;
constexpr int kHttpForbidden = 403;

// True for the statuses with which a store refuses the customer's session.
constexpr bool isSessionRefused(long status) {
  return status == kHttpUnauthorized || status == kHttpForbidden;
}

// What HttpRequestRunner::PerformRequest returns when an exchange failed: libcurl's own number (1
// to 99, `man libcurl-errors`), or one of these for what libcurl does not test.
enum HttpFailure : int {
  kMethodRefused = 1001,     // the method is not one word; nothing was sent
  kUrlRefused = 1002,        // the URL contains a NUL; nothing was sent
  kHeaderRefused = 1003,     // a header's name is not one word, or its value contains CR, LF or
                             // NUL; nothing was sent
  kResponseTooLarge = 1004,  // the body of the response grew beyond ORVANE_MAX_ANSWER_BYTES
};

}  // namespace base

#endif  // BASE_HTTPRESULT_H_
