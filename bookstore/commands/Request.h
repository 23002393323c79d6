// How a command sends: with the spinner turning, and what the library reports as a Failure. Used by
// one thread.

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

  // Throws the Failure that was heard of, if any. `url` is where the request went.
  void throwIfAny(const std::string& url) const;

  // The HTTP status other than 200 that was heard of; 0 for none.
  int status() const;

 private:
  graphql::GraphQLApi& api_;
  std::optional<std::pair<int, int>> heard_;  // result, status
};

// Calls `operation`, which performs one operation of `context.api`, and returns its result. What it
// throws passes.
template <typename Operation>
auto waitFor(const Context& context, Operation operation) {
  std::optional<Spinner> spinner;
  if (!context.arguments.has("--verbose")) {  // the log then shows what goes on
    spinner.emplace(context.output.terminal(), "Asking the store");
  }
  return operation();
}

// The same for an operation on `url`. Throws Failure when the transfer failed or the status was not
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
