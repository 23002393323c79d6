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
// - Json::LogicError for a value in the answer that cannot be converted to what is read;
// - Json::RuntimeError for an answer that is nested deeper than 1,000 levels;
// - what the platform, the error callback or the standard library for want of memory throws.
// Unless an operation says otherwise, the stored state is then what it was before the call.
//
// An answer whose root, or whose "data", is not an object has no members: it is an answer without
// the expected data, never an exception.
//
// Unless an operation says otherwise, each answer is logged at level 5 as JSON, and each failure at
// level 2.
//
// The locales of the process change nothing, and are not changed.
class GraphQLApi {
 public:
  // How an operation without a record of its own for errors ended.
  enum ApiError : int {
    Ok = 0,            // the answer held what was asked for
    BadResponse = 3,   // an answer arrived, but not with status 200 or without the expected data
    NetworkError = 5,  // no answer: the transfer failed
  };

  // What is shown of a book sample. A fresh record has all texts empty and is a BadResponse.
  struct SampleMetadata {
    std::string apiUrl;        // endpoint of the store that was asked
    std::string uid;           // the product, as the server names it
    std::string name;          // title
    std::string author;        // full name of the first author; empty when there is none
    std::string price;         // such as "EUR 9.99"; empty when the answer held no prices
    std::string oldPrice;      // the price before a discount; empty without one
    std::string thumbnailUrl;  // cover picture; empty when there is none
    ApiError error = BadResponse;
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
  // only informs. It is called in place, never as a copy: what it remembers lasts until the next
  // failure. While it runs it may replace itself (it is then destroyed when it returns) and perform
  // operations of this object, but not copy, move or destroy this object.
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

  // Signs the customer in to `store` with `email` and `password`; waits as long as the platform
  // lets a transfer take that has no time limit of its own. Every outcome replaces the session of
  // the storage, if there is one, and is saved:
  // - token received: `error` 0; the tokens, the identity of the store and its cache id are stored;
  // - status 200 without a token, as for a wrong password: `error` 1 and the server's message, or
  //   `error` 0 when it gave none; the tokens are emptied, identity and cache id are those of
  //   `store`;
  // - other status: `error` is the integer under "code" in the answer, 0 when there is none;
  // - failed transfer: `error` -1.
  // After the last two the tokens are emptied, identity and cache id stay, and the callback is
  // told.
  //
  // The request, password included, is logged at level 5 as a curl command.
  //
  // Throws Json::LogicError for a "code" that is no number (after the tokens were emptied), and for
  // a "refresh_token" or "expires_in" that is an object or an array (the session is then
  // untouched).
  GraphQLStorageApi::LoginInfo auth(const GraphQLStorageApi::StoreInfo& store,
                                    const std::string& email, const std::string& password);

  // Buys new tokens at `store` for `refreshToken`, waiting at most 30 seconds. An answer with
  // status 200 replaces the three tokens of the storage, if there is one, by those received, and by
  // empty ones when there are none; the identity of the store and the cache id stay. Outcomes:
  // - token received: `error` 0;
  // - status 200 without a token: `error` 1 and the server's message, `error` 0 when it gave none;
  // - other status: `error` is "code" in the answer when that is an integer, else 1;
  // - failed transfer: `error` -1, and `code` is the runner's result.
  // After the last two the session is untouched, and the callback is told.
  GraphQLStorageApi::LoginInfo refreshTokens(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& refreshToken);

  // Asks `store` whether `email` may still be registered, waiting at most 30 seconds. Ok: the
  // answer is in `*available`, which must not be null and is otherwise left as it was.
  // NetworkError: logged and told to the callback. BadResponse: other status, or no such member in
  // the answer; neither logged as a failure nor told. Throws Json::LogicError when
  // "isEmailAvailable" is neither an object nor null, or its member neither boolean, number nor
  // null.
  ApiError isEmailAvailable(const GraphQLStorageApi::StoreInfo& store, const std::string& email,
                            bool* available);

  // Registers a customer at `store`, waiting at most 30 seconds; does not sign in. `error` 0: the
  // answer held no error message. 1: it did. -1: failed transfer or other status; logged and told
  // to the callback. Throws Json::LogicError for a message that is an object or an array, before
  // the answer is logged.
  GraphQLStorageApi::ErrorInfo createAccount(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& email, const std::string& password,
                                             const std::string& firstname,
                                             const std::string& lastname, bool isSubscribed);

  // Has `store` mail a link with which the customer sets a new password, waiting at most 30
  // seconds. The answer is not logged. `error` 0: done, or refused without a message. 1: the
  // server's message tells why not. -1: failed transfer (logged) or other status (told to the
  // callback, then logged).
  GraphQLStorageApi::ErrorInfo resetPassword(const GraphQLStorageApi::StoreInfo& store,
                                             const std::string& email);

  // Asks `store` for the signed-in customer's profile, waiting at most 30 seconds. Ok: it is in
  // `*info`, which must not be null and is otherwise left as it was. NetworkError: logged.
  // BadResponse: other status (told to the callback, then logged), or an answer without a customer.
  ApiError userInfo(const GraphQLStorageApi::StoreInfo& store, GraphQLStorageApi::UserInfo* info);

  // Asks `store` for all that is shown of the product `uid`, waiting at most 30 seconds. `uid` goes
  // into the query as it is. The record's `error` is Ok; NetworkError (logged); or BadResponse:
  // other status (told to the callback, then logged), an answer without the product (all texts
  // empty), or a product under another uid (texts filled).
  SampleMetadata sampleMetadata(const GraphQLStorageApi::StoreInfo& store, const std::string& uid);

  // The same for `uid` and the prices alone; the other texts of the record stay empty.
  SampleMetadata samplePriceRefresh(const GraphQLStorageApi::StoreInfo& store,
                                    const std::string& uid);

  // Sets `price`, and with a discount `oldPrice`, of `metadata` from the "price_range" object
  // `priceRange` of a product; leaves both when that has no "minimum_price" object. Reads both
  // during the call only. Throws Json::LogicError for prices that are no objects or amounts that
  // are.
  void fillSamplePrice(SampleMetadata& metadata, Json::Value& priceRange);

  // The amount as text with two decimals, in every locale of the process. An empty amount is
  // "0.00"; one without comma and point gets ".00" whatever it holds; else the leading number
  // counts, its first comma taken as the point, and is rounded to cents, halves away from zero. No
  // number, or one that is not a number (nan), counts as 0; cents are limited to 32 bits, so that
  // larger amounts, infinite ones included, become "21474836.47" or "-21474836.-48". Of a negative
  // amount whole part and cents carry a sign each: "-1.5" gives "-1.-50". Any thread may call it.
  std::string normalizePrice(const std::string& amount);

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
