#include "graphql_api/GraphQLStorageApi.h"

#include <ov_sdk.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string_view>
#include <utility>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>
#include <boost/optional.hpp>

#include "graphql_api/Log.h"
#include "graphql_api/StringUtils.h"

using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::CfgSecret;
using orvane::utilities::CfgWrapper;

namespace graphql {

namespace {

const char kStoreListPath[] = "/mnt/ext1/system/state/cache/store_list.cfg";
const char kTokenPath[] = "/mnt/ext1/system/config/bookstore.cfg";

// A file can claim billions of records. Beyond this number, only records with a key in the file are
// read.
constexpr unsigned int kMostWalkedRecords = 10000;

const char* trueOrFalse(bool value) {
  return value ? "true" : "false";
}

// Reads values of an open configuration, each with a key that ends in `suffix`. Absent keys give
// empty texts.
class ValueReader {
 public:
  explicit ValueReader(const CfgWrapper& config, std::string suffix = std::string())
      : config_(config), suffix_(std::move(suffix)) {}

  void text(std::string_view key, std::string& value) const {
    value = config_.read<std::string>(joined({key, suffix_}), std::string());
  }
  void secret(std::string_view key, std::string& value) const {
    value = config_.read<CfgSecret>(joined({key, suffix_}), CfgSecret());
  }
  void flag(std::string_view key, bool& value) const {
    std::string word;
    text(key, word);
    value = word == "true";
  }

 private:
  const CfgWrapper& config_;
  const std::string suffix_;
};

// The counterpart of ValueReader.
class ValueWriter {
 public:
  explicit ValueWriter(const CfgWrapper& config, std::string suffix = std::string())
      : handle_(config.handle), suffix_(std::move(suffix)) {}

  void text(std::string_view key, const std::string& value) const {
    WriteString(handle_, joined({key, suffix_}).c_str(), value.c_str());
  }
  void secret(std::string_view key, const std::string& value) const {
    WriteSecret(handle_, joined({key, suffix_}).c_str(), value.c_str());
  }
  void flag(std::string_view key, bool value) const { text(key, trueOrFalse(value)); }

 private:
  ov_config* const handle_;
  const std::string suffix_;
};

// Visits the members of a store in the order of the file, which is not their order in the record.
template <typename Values, typename Store>
void visitStore(const Values& values, Store& store) {
  values.text("storeName", store.storeName);
  values.text("providerID", store.providerID);
  values.text("url", store.url);
  values.text("apiUrl", store.apiUrl);
  values.text("lang", store.language);
  values.text("langCode", store.langCode);
  values.text("storeCode", store.storeCode);
  values.secret("token", store.integrationToken);
  values.flag("status", store.status);
  values.text("currency", store.currency);
}

GraphQLStorageApi::StoreInfo readStore(const CfgWrapper& config, unsigned int index) {
  GraphQLStorageApi::StoreInfo store;
  visitStore(ValueReader(config, decimal(index)), store);
  return store;
}

// The indices of the records to read. Beyond kMostWalkedRecords only those with a web address,
// since other records are dropped.
std::set<unsigned int> recordIndices(const CfgWrapper& config, unsigned int count) {
  std::set<unsigned int> indices;
  if (count <= kMostWalkedRecords) {
    for (unsigned int index = 0; index < count; ++index) {
      indices.insert(indices.end(), index);
    }
    return indices;
  }
  const std::string_view name = "url";
  for (const std::string& key : config.keys()) {
    if (key.compare(0, name.size(), name) == 0) {
      const unsigned long long index = std::strtoull(key.c_str() + name.size(), nullptr, 10);
      if (index < count) {
        indices.insert(static_cast<unsigned int>(index));
      }
    }
  }
  return indices;
}

}  // namespace

bool GraphQLStorageApi::StoreInfo::isValid() const {
  return !url.empty() && !apiUrl.empty();
}

GraphQLStorageApi::GraphQLStorageApi() {
  reload();
}

GraphQLStorageApi::~GraphQLStorageApi() = default;

void GraphQLStorageApi::reload() {
  loadStoreList();
  loadTokens();
}

GraphQLStorageApi::StoreInfoList GraphQLStorageApi::storesList() const {
  return storesList_;
}

void GraphQLStorageApi::setStoresList(const StoreInfoList& list) {
  storesList_ = list;
  saveStoreList();
}

void GraphQLStorageApi::saveStoreList() {
  const int count = static_cast<int>(storesList_.size());
  GRAPHQL_LOG(kLogInformation, "Save stores: count [%d]", count);
  CfgWrapper config(kStoreListPath, CfgWrapper::Write);
  WriteInt(config.handle, "count", count);
  int index = 0;
  for (const StoreInfo& store : storesList_) {
    visitStore(ValueWriter(config, decimal(index)), store);
    GRAPHQL_LOG(kLogInformation, "Save stores: url [%d] [%s]", index, store.url.c_str());
    ++index;
  }
  config.saveAndClose();
}

void GraphQLStorageApi::loadStoreList() {
  storesList_.clear();
  CfgWrapper config(kStoreListPath, CfgWrapper::Read);
  // On purpose: a negative count counts as the unsigned number with the same bits.
  const auto count = static_cast<unsigned int>(config.readIfExists<int>("count").value_or(0));
  for (const unsigned int index : recordIndices(config, count)) {
    StoreInfo store = readStore(config, index);
    if (store.isValid()) {
      storesList_.push_back(std::move(store));
      GRAPHQL_LOG(kLogInformation, "Loaded stores: url [%d] [%s]", static_cast<int>(index),
                  storesList_.back().url.c_str());
    }
  }
  config.closeNoSave();
  GRAPHQL_LOG(kLogInformation, "Loaded stores: count [%d]", static_cast<int>(storesList_.size()));
}

GraphQLStorageApi::StoreInfoList::const_iterator GraphQLStorageApi::findCurrentStore() const {
  return std::find_if(storesList_.begin(), storesList_.end(), [this](const StoreInfo& store) {
    return store.url == storeUrl_ && store.apiUrl == storeApiUrl_ &&
           store.providerID == storeProvider_;
  });
}

// Without a current store, the index is that of the first store, but the record is empty. Both on
// purpose: callers rely on them.
int GraphQLStorageApi::currentStoreIndex() const {
  const auto found = findCurrentStore();
  return found == storesList_.end() ? 0 : static_cast<int>(found - storesList_.begin());
}

GraphQLStorageApi::StoreInfo GraphQLStorageApi::currentStore() const {
  const auto found = findCurrentStore();
  return found == storesList_.end() ? StoreInfo() : *found;
}

GraphQLStorageApi::StoreInfo GraphQLStorageApi::storeInfo(const std::string& providerID) const {
  const auto found =
      std::find_if(storesList_.begin(), storesList_.end(),
                   [&](const StoreInfo& store) { return store.providerID == providerID; });
  return found == storesList_.end() ? StoreInfo() : *found;
}

std::string GraphQLStorageApi::accessToken() const {
  return accessToken_;
}

std::string GraphQLStorageApi::refreshToken() const {
  return refreshToken_;
}

std::string GraphQLStorageApi::magentoCacheId() const {
  return magentoCacheId_;
}

void GraphQLStorageApi::setTokens(const std::string& accessToken, const std::string& refreshToken,
                                  const std::string& expiration, const StoreInfo& store,
                                  const std::string& magentoCacheId) {
  accessToken_ = accessToken;
  refreshToken_ = refreshToken;
  tokenExpiration_ = expiration;
  if (store.isValid()) {
    GRAPHQL_LOG(kLogInformation, "Store url: [%s]", store.url.c_str());
    storeUrl_ = store.url;
    storeApiUrl_ = store.apiUrl;
    storeProvider_ = store.providerID;
    magentoCacheId_ = magentoCacheId;
  }
  saveTokens();
}

// Visits the members of the session in the order of the file.
template <typename Values, typename State>
void GraphQLStorageApi::visitSession(const Values& values, State& state) {
  values.secret(BookStoreVersionProxy::configKeyAccessToken(), state.accessToken_);
  values.secret(BookStoreVersionProxy::configKeyRefreshToken(), state.refreshToken_);
  values.secret(BookStoreVersionProxy::configKeyExpirationToken(), state.tokenExpiration_);
  values.text("storeUrl", state.storeUrl_);
  values.text("storeApiUrl", state.storeApiUrl_);
  values.text("storeProvider", state.storeProvider_);
  values.secret("storeCacheId", state.magentoCacheId_);
}

void GraphQLStorageApi::saveTokens() {
  const bool hasStore = !storeUrl_.empty() && !storeApiUrl_.empty() && !storeProvider_.empty();
  GRAPHQL_LOG(kLogInformation, "Save tokens: empty [%s] info [%s]", trueOrFalse(isAnyTokenEmpty()),
              trueOrFalse(hasStore));
  // Empty tokens are saved: this is how a sign-out reaches the file.
  if (!hasStore) {
    return;
  }
  CfgWrapper config(kTokenPath, CfgWrapper::Write);
  visitSession(ValueWriter(config), *this);
  config.save();
}

void GraphQLStorageApi::loadTokens() {
  CfgWrapper config(kTokenPath, CfgWrapper::Read);
  // The device's own token is only tested, and not used otherwise.
  std::string deviceToken;
  const ValueReader values(config);
  values.secret(BookStoreVersionProxy::configKeySacAccessToken(), deviceToken);
  if (!deviceToken.empty()) {
    visitSession(values, *this);
  }
  GRAPHQL_LOG(kLogInformation, "Load tokens: empty [%s]", trueOrFalse(isAnyTokenEmpty()));
  config.closeNoSave();
}

bool GraphQLStorageApi::isAnyTokenEmpty() const {
  return accessToken_.empty() || refreshToken_.empty() || tokenExpiration_.empty();
}

bool GraphQLStorageApi::isLoggedIn() {
  const std::lock_guard<std::mutex> guard(mutex_);
  return !accessToken_.empty();
}

void GraphQLStorageApi::logoutOnlyFromStore() {
  accessToken_.clear();
  refreshToken_.clear();
  tokenExpiration_.clear();
  saveTokens();
}

}  // namespace graphql
