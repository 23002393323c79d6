// The headers of every request to the store, the device identity in them, and functions with
// unmangled names for programs that need only these, or a sample. Two threads must not build the
// first headers of the process at the same time; later calls may run on any thread that may read
// the given storage.

#ifndef GRAPHQL_API_GRAPHQLHEADER_H_
#define GRAPHQL_API_GRAPHQLHEADER_H_

#include <map>
#include <memory>
#include <string>

#include "graphql_api/GraphQLStorageApi.h"

// The device identity: empty when the library is loaded, set when the process builds its first
// headers, and never changed afterwards. Callers only read it.
extern std::string deviceModel;      // "eink " and the model's number
extern std::string softwareVersion;  // the firmware's version
extern std::string serialNumber;     // the device's serial number
extern std::string userAgent;  // with model number, screen size in pixels and firmware version

namespace graphql {

// The headers of a request to `store`, name to value. Reads the store's codes, currency and
// integration token, and for the customer's credentials the tokens of `storage`. A header without a
// token is left out, also when `storage` is null. Reads the device identity from the device SDK at
// the first call in the process only; throws std::logic_error when a text of the SDK is null.
std::map<std::string, std::string> graphQLHeaders(const std::shared_ptr<GraphQLStorageApi>& storage,
                                                  const GraphQLStorageApi::StoreInfo& store,
                                                  GraphQLStorageApi::TokenType type);

}  // namespace graphql

// Functions with unmangled names: three for the device's embedded browser, and one for programs
// that request a sample. Each call for the browser reads the store list file and the token file
// again, on the calling thread, and so sees the changes of other processes. The caller owns the
// objects, which are filled in place. Exceptions of the configuration layer reach the caller.
extern "C" {

// Replaces `*cookies`, name to value, by the cookies that sign the customer in to the store's web
// pages: empty when nobody is signed in, or when the current store is not valid. Sets `*storeUrl`
// to the current store's web address, signed in or not; unchanged when that store is not valid.
// Pass null for an output that is not needed. Both outputs are unchanged when the device uses
// another store generation than 3.
void getBrowserCookies(std::map<std::string, std::string>* cookies, std::string* storeUrl);

// The same with the headers of the signed-in customer's requests, both tokens included, instead of
// the cookies. Two threads must not build the first headers of the process at the same time.
void getBrowserGraphQLHeaders(std::map<std::string, std::string>* headers, std::string* storeUrl);

// True when an access token is stored, even if it is expired.
bool isLoggedIn();

// Queues a request for the sample of the book `bookId`, whose file is `sampleFilePath`, and starts
// the background application that processes the queue, unless a task of it is running. Reads both
// texts during the call only. If a text is null or empty, this is logged and nothing is done. May
// wait for the queue's lock (GraphQLSampleQueue). Any thread of any process may call it; two calls
// at once can both start the application. Does not report a result.
void addSample(const char* bookId, const char* sampleFilePath);

}  // extern "C"

#endif  // GRAPHQL_API_GRAPHQLHEADER_H_
