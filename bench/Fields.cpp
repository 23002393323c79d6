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

Fields fieldsOf(const Session& session) {
  const auto& login = session.login;
  return {login.accessToken, login.refreshToken, login.expiresIn, login.errorInfo.message,
          session.cacheId};
}

Fields fieldsOf(const graphql::GraphQLStorageApi::UserInfo& customer) {
  return {customer.email, customer.firstname, customer.lastname};
}

Fields fieldsOf(const graphql::GraphQLApi::SampleMetadata& metadata) {
  return {metadata.apiUrl, metadata.uid,      metadata.name,        metadata.author,
          metadata.price,  metadata.oldPrice, metadata.thumbnailUrl};
}

}  // namespace bench
