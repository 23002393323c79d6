#include "bench/Fields.h"

namespace bench {

Fields fieldsOf(const graphql::GraphQLStorageApi::StoreInfoList& stores) {
  Fields fields;
  for (const auto& store : stores) {
    fields.insert(fields.end(), {store.storeName, store.url, store.apiUrl, store.language,
                                 store.langCode, store.storeCode, store.integrationToken,
                                 store.providerID, store.currency, store.status ? "open" : ""});
  }
  return fields;
}

}  // namespace bench
