// The operations of the online book store, one method each. Every operation builds one GraphQL
// request, sends it on the calling thread and waits for the response; the library starts no
// threads. Only one thread at a time may use an object. Different objects may work at the same
// time, if they do not share a state object.

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
// Failures are reported as results: an ApiError, an ErrorInfo, or an empty list or record. The
// operations themselves throw nothing, but every operation passes on these exceptions:
// - Json::LogicError for a value in the response that cannot be converted to the type that is read;
// - Json::RuntimeError for a response with more than 1,000 nested levels;
// - exceptions of the platform and of the error callback, and std::bad_alloc.
// Unless an operation says otherwise, the stored state is then the same as before the call.
//
// A response whose root or "data" is not an object has no members: it is a response without the
// expected data, never an exception.
//
// Unless an operation says otherwise, each response is logged at level 5 as JSON, and each failure
// at level 2.
//
// Operations give the same results in every locale of the process, and change none.
class GraphQLApi {
 public:
  // The result of an operation that returns no error record.
  enum ApiError : int {
    Ok = 0,            // the response has the requested data
    BadResponse = 3,   // the status of the response is not 200, or the expected data is missing
    NetworkError = 5,  // the transfer failed
  };

  // The data to show for a book sample. A new record has empty texts and is a BadResponse.
  struct SampleMetadata {
    std::string apiUrl;        // endpoint of the store
    std::string uid;           // identifier of the product, as the server sent it
    std::string name;          // title
    std::string author;        // full name of the first author; empty when there is none
    std::string price;         // such as "EUR 9.99"; empty when the response has no prices
    std::string oldPrice;      // the price before a discount; empty without one
    std::string thumbnailUrl;  // cover picture; empty when there is none
    ApiError error = BadResponse;
  };

  // Called when an operation failed: `err` is the runner's result, 0 when a response arrived;
  // `code` is the HTTP status, 0 when no response arrived.
  using ErrorCallback = std::function<void(int err, int code)>;

  // Owns a share of `storage`. If `storage` is null, nothing is stored. Sends no request.
  explicit GraphQLApi(const std::shared_ptr<GraphQLStorageApi>& storage);

  // The endpoint that lists the regional stores: an absolute https URL, fixed when the library is
  // built. Throws std::bad_alloc only.
  std::string getGraphQLUrl() const;

  // Replaces the error callback by `callback`; an empty function switches it off. The callback runs
  // on the thread of the failed operation, at most once per operation, and before the operation
  // returns. It does not change the result. It is called in place, never as a copy, so it keeps its
  // state until the next failure. While it runs it may replace itself (it is then destroyed when it
  // returns) and call operations of this object, but must not copy, move or destroy this object.
  void setErrorCb(ErrorCallback callback);

  // Requests the regional stores from the endpoint of getGraphQLUrl(), waiting at most 30 seconds.
  // Returns the open stores in the server's order; a store without a name gets the name of its
  // language. After every response with status 200 the result, empty or not, also replaces the
  // store list of the storage and its file (GraphQLStorageApi::setStoresList()).
  //
  // The list is empty when the transfer failed or the status is not 200 (logged, callback called,
  // store list unchanged), or when the response has no open store.
  //
  // Throws Json::LogicError for a store that is not an object or has a member of a wrong type; the
  // store list is then unchanged.
  GraphQLStorageApi::StoreInfoList getStores();

  // Signs the customer in to `store` with `email` and `password`. Sets no time limit: the platform
  // decides how long the transfer may take. Every outcome replaces the session of the storage, if
  // there is one, and saves it:
  // - token received: `error` 0; stores the tokens, the identity of the store and its cache id;
  // - status 200 without a token, for example after a wrong password: `error` 1 and the server's
  //   message, or `error` 0 without a message; empties the tokens, and stores the identity and the
  //   cache id of `store`;
  // - other status: `error` is the integer under "code" in the response, 0 without "code";
  // - failed transfer: `error` -1.
  // The last two empty the tokens, keep identity and cache id, and call the callback.
  //
  // The request, password included, is logged at level 5 as a curl command.
  //
  // Throws Json::LogicError for a "code" that is not a number (after the tokens were emptied), and
  // for a "refresh_token" or "expires_in" that is an object or an array (the session is then
  // unchanged).
  GraphQLStorageApi::LoginInfo auth(const GraphQLStorageApi::StoreInfo& store,
                                    const std::string& email, const std::string& password);

  // Exchanges `refreshToken` for new tokens at `store`, waiting at most 30 seconds. A response with
  // status 200 replaces the three tokens of the storage, if there is one: by the received tokens,
  // or by empty texts when none were received. The identity of the store and the cache id are
  // unchanged. Outcomes:
  // - token received: `error` 0;
  // - status 200 without a token: `error` 1 and the server's message, `error` 0 without a message;
  // - other status: `error` is "code" in the response when that is an integer, else 1;
  // - failed transfer: `error` -1, and `code` is the runner's result.
  // The last two leave the session unchanged and call the callback.
  GraphQLStorageApi::LoginInfo refreshTokens(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& refreshToken);

  // Asks `store` whether `email` can be registered, waiting at most 30 seconds. `available` must
  // not be null. Ok: `*available` is set; after every other result it is unchanged. NetworkError:
  // logged, callback called. BadResponse: other status, or "isEmailAvailable" is missing; neither
  // logged as a failure nor reported to the callback. Throws Json::LogicError when
  // "isEmailAvailable" is neither an object nor null, or its member is not a boolean, a number or
  // null.
  ApiError isEmailAvailable(const GraphQLStorageApi::StoreInfo& store, const std::string& email,
                            bool* available);

  // Registers a customer at `store`, waiting at most 30 seconds; does not sign in. `error` 0: the
  // response has no error message. 1: it has one. -1: failed transfer or other status; logged,
  // callback called. Throws Json::LogicError for a message that is an object or an array, before
  // the response is logged.
  GraphQLStorageApi::ErrorInfo createAccount(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& email, const std::string& password,
                                             const std::string& firstname,
                                             const std::string& lastname, bool isSubscribed);

  // Requests that `store` sends a password reset email, waiting at most 30 seconds. The response is
  // not logged. `error` 0: done, or refused without a message. 1: refused; `message` is the
  // server's reason. -1: failed transfer (logged) or other status (callback called, then logged).
  GraphQLStorageApi::ErrorInfo resetPassword(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& email);

  // Requests the signed-in customer's profile from `store`, waiting at most 30 seconds. `info` must
  // not be null. Ok: `*info` is set; after every other result it is unchanged. NetworkError:
  // logged. BadResponse: other status (callback called, then logged), or a response without a
  // customer.
  ApiError userInfo(const GraphQLStorageApi::StoreInfo& store, GraphQLStorageApi::UserInfo* info);

  // Requests the data of the product `uid` from `store`, waiting at most 30 seconds. Inserts `uid`
  // into the query unchanged. The record's `error` is Ok, NetworkError (logged) or BadResponse:
  // other status (callback called, then logged), a response without the product (all texts empty),
  // or a product with another uid (texts set).
  SampleMetadata sampleMetadata(const GraphQLStorageApi::StoreInfo& store, const std::string& uid);

  // The same for `uid` and the prices only; the other texts of the record stay empty.
  SampleMetadata samplePriceRefresh(const GraphQLStorageApi::StoreInfo& store,
                                    const std::string& uid);

  // Sets `price`, and with a discount `oldPrice`, of `metadata` from `priceRange`, the
  // "price_range" object of a product. Without a "minimum_price" object, changes nothing. Reads
  // both arguments during the call only. Throws Json::LogicError when a price is not an object, or
  // when an amount is an object or an array.
  void fillSamplePrice(SampleMetadata& metadata, Json::Value& priceRange);

  // The amount as text with two decimals, the same in every locale. An empty amount gives "0.00".
  // An amount without comma and point gets ".00" appended, whatever it contains. In any other
  // amount the first comma becomes a point, and the number at the beginning is rounded to cents,
  // halves away from zero; without a number, and for "nan", it is 0. Cents are limited to 32 bits:
  // larger amounts, also infinite ones, give "21474836.47" or "-21474836.-48". In a negative amount
  // the whole part and the cents each have a sign: "-1.5" gives "-1.-50". Any thread may call it.
  std::string normalizePrice(const std::string& amount);

  // Adds the headers that graphQLHeaders() returns to `request`, in the order of their names.
  void addGraphQLHeaders(orvane::utilities::HttpRequest& request,
                         const GraphQLStorageApi::StoreInfo& store,
                         GraphQLStorageApi::TokenType type);

  // The first "message" in the "errors" array of `response`; empty without one. Throws
  // Json::LogicError when that message is an object or an array. Any thread may call it.
  std::string getErrorMessage(Json::Value& response);

  // The error record of a response with status 200: its error message, and `error` 1 if it has one.
  // Throws as getErrorMessage() does. Any thread may call it.
  GraphQLStorageApi::ErrorInfo makeErrorInfo(Json::Value& response);

 private:
  struct Operation;
  struct Answer;
  using ProductReader = void (*)(const Json::Value& product,
                                 const GraphQLStorageApi::StoreInfo& store,
                                 SampleMetadata* metadata);

  Answer perform(Operation& operation);
  int transfer(Operation& operation, Answer* answer);
  void reportFailure(const Operation& operation, Answer* answer);
  GraphQLStorageApi::LoginInfo readLogin(Answer* answer, const std::string& resultName,
                                         const std::string& tokenName);
  void storeTokens(const GraphQLStorageApi::LoginInfo& login,
                   const GraphQLStorageApi::StoreInfo& store, const std::string& cacheId);
  SampleMetadata fetchSample(Operation& operation, const std::string& uid, ProductReader readMore);

  std::shared_ptr<GraphQLStorageApi> storage;
  std::function<void(int, int)> errorCb;
};

}  // namespace graphql

#endif  // GRAPHQL_API_GRAPHQLAPI_H_
