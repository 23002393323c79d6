#include "graphql_api/GraphQLHeader.h"

#include <ov_sdk.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "graphql_api/GraphQLSampleQueue.h"
#include "graphql_api/Log.h"

std::string deviceModel;
std::string softwareVersion;
std::string serialNumber;
std::string userAgent;

namespace graphql {

namespace {

bool identityFilled = false;

// The model's text from its first decimal digit on.
std::string modelNumber(const std::string& model) {
  const std::size_t digit = model.find_first_of("0123456789");
  return digit == std::string::npos ? std::string() : model.substr(digit);
}

void fillIdentity() {
  if (identityFilled) {
    return;
  }
  identityFilled = true;
  const std::string number = modelNumber(GetDeviceModel());
  deviceModel = "eink " + number;
  softwareVersion = std::string(GetSoftwareVersion());
  serialNumber = std::string(GetSerialNumber());
  // On purpose no blank before the bracket: servers know this exact form.
  userAgent = "Orvane Reader/" + number + "(screen " + std::to_string(ScreenWidth()) + "x" +
              std::to_string(ScreenHeight()) + "; FW " + softwareVersion + ")";
}

void addBearer(std::map<std::string, std::string>& headers, const char* name,
               const std::string& token) {
  if (!token.empty()) {
    headers[name] = "Bearer " + token;
  }
}

void addCredentials(const GraphQLStorageApi* storage, const GraphQLStorageApi::StoreInfo& store,
                    GraphQLStorageApi::TokenType type,
                    std::map<std::string, std::string>& headers) {
  switch (type) {
    case GraphQLStorageApi::None:
      break;
    case GraphQLStorageApi::Integration:
      addBearer(headers, "Authorization", store.integrationToken);
      break;
    case GraphQLStorageApi::CustomerRefresh:
      if (storage != nullptr) {
        addBearer(headers, "RefreshToken", storage->refreshToken());
      }
      [[fallthrough]];
    case GraphQLStorageApi::Customer:
      if (storage != nullptr) {
        addBearer(headers, "Authorization", storage->accessToken());
      }
      break;
  }
}

}  // namespace

std::map<std::string, std::string> graphQLHeaders(const std::shared_ptr<GraphQLStorageApi>& storage,
                                                  const GraphQLStorageApi::StoreInfo& store,
                                                  GraphQLStorageApi::TokenType type) {
  fillIdentity();
  std::map<std::string, std::string> headers;
  headers["Store"] = store.storeCode;
  addCredentials(storage.get(), store, type, headers);
  headers["Content-Type"] = "application/json";
  headers["Cookie"] = "orvane-currency=" + store.currency + "; orvane-locale=" + store.langCode +
                      "; orvane-store=" + store.storeCode;
  headers["User-Agent"] = userAgent;
  headers["x-header-reader-model"] = deviceModel;
  headers["x-header-software-version"] = softwareVersion;
  headers["x-header-deviceid"] = serialNumber;
  return headers;
}

}  // namespace graphql

namespace {

using graphql::GraphQLStorageApi;
using TextMap = std::map<std::string, std::string>;

constexpr int kServedStoreVersion = 3;

// Reads the state afresh; hands a valid current store of a signed-in customer to `fill`, which
// fills the emptied `output`.
template <typename Fill>
void fillForBrowser(TextMap* output, std::string* storeUrl, Fill fill) {
  if (output == nullptr && storeUrl == nullptr) {
    return;
  }
  if (orvane::utilities::BookStoreVersionProxy::storeVersion(false) != kServedStoreVersion) {
    return;
  }
  const auto storage = std::make_shared<GraphQLStorageApi>();
  GraphQLStorageApi::StoreInfo store = storage->currentStore();
  if (output != nullptr) {
    output->clear();
    if (storage->isLoggedIn() && store.isValid()) {
      fill(storage, store);
    }
  }
  if (storeUrl != nullptr && store.isValid()) {
    *storeUrl = std::move(store.url);
  }
}

void setUnlessEmpty(TextMap& output, const char* name, const std::string& value) {
  if (!value.empty()) {
    output[name] = value;
  }
}

const char kSampleApplication[] = "graphql_sample_metadata.app";
constexpr unsigned int kSampleTaskFlags = 37;

// The log's readers know this text; compilers spell it in different ways.
const char kAddSampleSignature[] = "void addSample(const char *, const char *)";

bool isEmpty(const char* text) {
  return text == nullptr || *text == '\0';
}

void startSampleApplication() {
  const std::string path = std::string("/ombrel/bin/") + kSampleApplication;
  if (FindTaskByAppName(path.c_str()) > 0) {
    return;
  }
  const std::unique_ptr<char, decltype(&std::free)> argument(::strdup(path.c_str()), &std::free);
  char* const arguments[] = {argument.get(), nullptr};
  NewTask(path.c_str(), arguments, kSampleApplication, kSampleApplication, nullptr,
          kSampleTaskFlags);
}

}  // namespace

extern "C" {

void getBrowserCookies(TextMap* cookies, std::string* storeUrl) {
  fillForBrowser(cookies, storeUrl,
                 [cookies](const std::shared_ptr<GraphQLStorageApi>& storage,
                           const GraphQLStorageApi::StoreInfo&) {
                   setUnlessEmpty(*cookies, "orvane-customer", storage->accessToken());
                   setUnlessEmpty(*cookies, "orvane-customer-refresh", storage->refreshToken());
                   (*cookies)["orvane-serial-number"] = std::string(GetSerialNumber());
                   setUnlessEmpty(*cookies, "x-magento-cache-id", storage->magentoCacheId());
                 });
}

void getBrowserGraphQLHeaders(TextMap* headers, std::string* storeUrl) {
  fillForBrowser(headers, storeUrl,
                 [headers](const std::shared_ptr<GraphQLStorageApi>& storage,
                           const GraphQLStorageApi::StoreInfo& store) {
                   *headers =
                       graphql::graphQLHeaders(storage, store, GraphQLStorageApi::CustomerRefresh);
                 });
}

bool isLoggedIn() {
  return GraphQLStorageApi().isLoggedIn();
}

void addSample(const char* bookId, const char* sampleFilePath) {
  if (isEmpty(bookId)) {
    ov_print_log2(graphql::kLogFailure, __FILE__, __LINE__, kAddSampleSignature,
                  "Condition: \"bookId && *bookId\", return]");
    return;
  }
  if (isEmpty(sampleFilePath)) {
    ov_print_log2(graphql::kLogFailure, __FILE__, __LINE__, kAddSampleSignature,
                  "Condition: \"sampleFilePath && *sampleFilePath\", return]");
    return;
  }
  graphql::GraphQLSampleQueue().addSample(bookId, sampleFilePath);
  startSampleApplication();
}

}  // extern "C"
