// The operations of the online book store, one method each. Every operation builds one GraphQL
// request, sends it on the calling thread and waits for the answer; the library starts no threads.
// One object is used by one thread at a time; different objects may work at the same time as far as
// the state object that they share allows.

#ifndef GRAPHQL_API_GRAPHQLAPI_H_
#define GRAPHQL_API_GRAPHQLAPI_H_

#include <functional>
#include <memory>
#include <string>

#include <json/forwards.h>
#include <orvane/utilities/HttpRequest.h>

#include "graphql_api/GraphQLStorageApi.h"

namespace graphql {

// Access to the store service.
//
// Failures come back as results: an ApiError, an ErrorInfo, or an empty list or record. No
// operation throws an exception of its own, but these reach the caller of every one of them:
// - Json::LogicError for a value in the answer that cannot be converted to what the operation
// reads;
// - Json::RuntimeError for an answer that is nested deeper than 1,000 levels;
// - what the platform, the error callback or the standard library for want of memory throws.
// Unless an operation says otherwise, the stored state is then what it was before the call.
//
// An answer whose root, or whose "data", is not an object has no members: it is an answer without
// the expected data, never an exception.
//
// Each answer is logged at level 5 as the server sent it, each failure at level 2.
class GraphQLApi {
 public:
  // How an operation without a record of its own for errors ended.
  enum ApiError : int {
    Ok = 0,            // the answer held what was asked for
    BadResponse = 3,   // an answer arrived, but not with status 200 or without the expected data
    NetworkError = 5,  // no answer: the transfer failed
  };

  // Told of a failed operation: the runner's result, 0 when an answer arrived, and the HTTP status,
  // 0 when none did.
  using ErrorCallback = std::function<void(int err, int code)>;

  // Owns a share of `storage`, which may hold null: then nothing is stored. Sends nothing.
  explicit GraphQLApi(const std::shared_ptr<GraphQLStorageApi>& storage);

  // The endpoint that lists the regional stores: an absolute https URL, fixed when the library is
  // built. Throws nothing but for want of memory.
  std::string getGraphQLUrl() const;

  // Replaces the error callback by `callback`; an empty function switches it off. The callback runs
  // on the thread of the failing operation, at most once per operation and before that returns. It
  // only informs.
  void setErrorCb(ErrorCallback callback);

  // Asks the service's own endpoint for the regional stores, waiting at most 30 seconds. Returns
  // the open ones in the server's order; one without a name is named after its language. After
  // every answer with status 200 the result, empty or not, also replaces the store list of the
  // storage and its file (GraphQLStorageApi::setStoresList()).
  //
  // An empty list: the transfer failed or the status was not 200 (logged, told to the callback,
  // store list untouched); or the answer lists no open store.
  //
  // Throws Json::LogicError for a store that is not an object or has a member of a wrong kind; the
  // store list is then untouched.
  GraphQLStorageApi::StoreInfoList getStores();

  // Adds the headers of a request to `store` to `request`, in the order of their names.
  // graphQLHeaders() tells which they are.
  void addGraphQLHeaders(orvane::utilities::HttpRequest& request,
                         const GraphQLStorageApi::StoreInfo& store,
                         GraphQLStorageApi::TokenType type);

  // The first "message" in the "errors" array of the answer `response`; empty when there is none.
  // Throws Json::LogicError when that message is an object or an array. Any thread may call it.
  std::string getErrorMessage(Json::Value& response);

  // The error record of an answer that arrived with status 200: its error message, and as `error` 1
  // when there is one. Throws as getErrorMessage() does. Any thread may call it.
  GraphQLStorageApi::ErrorInfo makeErrorInfo(Json::Value& response);

 private:
  struct Operation;
  struct Answer;

  Answer perform(const Operation& operation);
  int transfer(const Operation& operation, Answer* answer);
  void reportFailure(const Operation& operation, Answer* answer);

  std::shared_ptr<GraphQLStorageApi> storage;
  std::function<void(int, int)> errorCb;
};

}  // namespace graphql

#endif  // GRAPHQL_API_GRAPHQLAPI_H_
