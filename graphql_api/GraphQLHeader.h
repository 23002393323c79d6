// The headers that every request to the store carries, the identity of the device in them, and the
// undecorated functions for programs that need no more than these, or a sample. The first header
// build of the process must not race with another one; later ones may run on any thread that may
// read the given storage.

#ifndef GRAPHQL_API_GRAPHQLHEADER_H_
#define GRAPHQL_API_GRAPHQLHEADER_H_

#include <map>
#include <memory>
#include <string>

#include "graphql_api/GraphQLStorageApi.h"

// The identity of the device: empty when the library is loaded, filled by the first header build of
// the process, never changed afterwards. Callers only read them.
extern std::string deviceModel;      // "eink " and the model's number
extern std::string softwareVersion;  // the firmware's version
extern std::string serialNumber;     // the device's serial number
extern std::string userAgent;  // with model number, screen size in pixels and firmware version

namespace graphql {

// The headers of a request to `store`, name to value. Reads the store's codes, currency and
// integration token; for the customer's credentials also the tokens of `storage`, which may hold
// null: then, as with an empty token, the header that would carry it is left out. Asks the device
// SDK for the identity at the first call in the process only; throws std::logic_error when a text
// of the SDK is null.
std::map<std::string, std::string> graphQLHeaders(const std::shared_ptr<GraphQLStorageApi>& storage,
                                                  const GraphQLStorageApi::StoreInfo& store,
                                                  GraphQLStorageApi::TokenType type);

}  // namespace graphql

// Functions under undecorated names: three for the device's embedded browser, and one for programs
// that want a sample. Each call for the browser reads the store list file and the token file
// afresh, on the calling thread, so that it sees what another process saved. The objects belong to
// the caller and are filled in place. What the configuration layer throws reaches the caller.
extern "C" {

// Replaces `*cookies`, name to value, by the cookies that show the store's web pages who is signed
// in: empty when nobody is, or when the current store is not valid. Sets `*storeUrl` to the current
// store's web address, signed in or not; leaves it when that store is not valid. Either pointer may
// be null for an output that is not wanted. Leaves both outputs when the device uses another store
// generation than 3.
void getBrowserCookies(std::map<std::string, std::string>* cookies, std::string* storeUrl);

// The same with the headers of a request of the signed-in customer, both tokens included, in place
// of the cookies. The first header build of the process must not race with another one.
void getBrowserGraphQLHeaders(std::map<std::string, std::string>* headers, std::string* storeUrl);

// True when an access token is stored, expired or not.
bool isLoggedIn();

// Queues the request for the sample of the book `bookId`, whose file is `sampleFilePath`, and
// starts the background application that works through the queue unless a task of it runs. Reads
// both texts during the call only; either being null or empty is logged, and nothing is done. May
// wait for the queue's lock (GraphQLSampleQueue). Any thread of any process may call it; two calls
// at once can both start the application. Tells no outcome.
void addSample(const char* bookId, const char* sampleFilePath);

}  // extern "C"

#endif  // GRAPHQL_API_GRAPHQLHEADER_H_
