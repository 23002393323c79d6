// The headers that every request to the store carries, and the identity of the device in them. The
// first header build of the process must not race with another one; later ones may run on any
// thread that may read the given storage.

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

#endif  // GRAPHQL_API_GRAPHQLHEADER_H_
