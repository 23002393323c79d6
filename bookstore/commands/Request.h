// How a command sends a request: with a spinner, and with the library's errors as a Failure. Used
// by one thread.

#ifndef BOOKSTORE_COMMANDS_REQUEST_H_
#define BOOKSTORE_COMMANDS_REQUEST_H_

#include <optional>
#include <string>
#include <utility>

#include "bookstore/Command.h"
#include "bookstore/terminal/Spinner.h"

namespace bookstore {

// Listens to the error callback of `api` while it lives.
class FailureListener {
 public:
  explicit FailureListener(graphql::GraphQLApi& api);
  ~FailureListener();

  FailureListener(const FailureListener&) = delete;
  FailureListener& operator=(const FailureListener&) = delete;

  // Throws a Failure if an error was reported. `url` is where the request went.
  void throwIfAny(const std::string& url) const;

  // The HTTP status that was reported as an error; 0 for none.
  int status() const;

 private:
  graphql::GraphQLApi& api_;
  std::optional<std::pair<int, int>> heard_;  // result, status
};

// Calls `operation`, which performs one operation of `context.api`, and returns its result. Throws
// what it throws.
template <typename Operation>
auto waitFor(const Context& context, Operation operation) {
  std::optional<Spinner> spinner;
  if (!context.arguments.has("--verbose")) {  // the log then shows the progress
    spinner.emplace(context.output.terminal(), "Asking the store");
  }
  return operation();
}

// The same for an operation on `url`. Throws Failure if the exchange failed or the status was not
// 200.
template <typename Operation>
auto send(const Context& context, const std::string& url, Operation operation) {
  const FailureListener listener(context.api);
  auto result = waitFor(context, operation);
  listener.throwIfAny(url);
  return result;
}

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_REQUEST_H_
