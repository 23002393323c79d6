#include "graphql_api/GraphQLHeader.h"

#include <ov_sdk.h>

#include <utility>

#include <orvane/utilities/BookStoreVersionProxy.h>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "graphql_api/Log.h"
#include "graphql_api/StringUtils.h"

std::string deviceModel;
std::string softwareVersion;
std::string serialNumber;
std::string userAgent;

namespace graphql {

namespace {

using TextMap = std::map<std::string, std::string>;

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
  deviceModel = joined({"eink ", number});
  softwareVersion = std::string(GetSoftwareVersion());
  serialNumber = std::string(GetSerialNumber());
  // On purpose no space before the bracket: servers expect this exact form.
  userAgent = joined({"Orvane Reader/", number, "(screen ", decimal(ScreenWidth()), "x",
                      decimal(ScreenHeight()), "; FW ", softwareVersion, ")"});
}

void set(TextMap& texts, const char* name, const std::string& text) {
  texts[name] = text;
}

void setUnlessEmpty(TextMap& texts, const char* name, const std::string& text) {
  if (!text.empty()) {
    set(texts, name, text);
  }
}

void addBearer(TextMap& headers, const char* name, const std::string& token) {
  if (!token.empty()) {
    set(headers, name, joined({"Bearer ", token}));
  }
}

void addCredentials(const GraphQLStorageApi* storage, const GraphQLStorageApi::StoreInfo& store,
                    GraphQLStorageApi::TokenType type, TextMap& headers) {
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

TextMap requestHeaders(const GraphQLStorageApi* storage, const GraphQLStorageApi::StoreInfo& store,
                       GraphQLStorageApi::TokenType type) {
  fillIdentity();
  TextMap headers;
  set(headers, "Store", store.storeCode);
  addCredentials(storage, store, type, headers);
  set(headers, "Content-Type", "application/json");
  set(headers, "Cookie",
      joined({"orvane-currency=", store.currency, "; orvane-locale=", store.langCode,
              "; orvane-store=", store.storeCode}));
  set(headers, "User-Agent", userAgent);
  set(headers, "x-header-reader-model", deviceModel);
  set(headers, "x-header-software-version", softwareVersion);
  set(headers, "x-header-deviceid", serialNumber);
  return headers;
}

}  // namespace

std::map<std::string, std::string> graphQLHeaders(const std::shared_ptr<GraphQLStorageApi>& storage,
                                                  const GraphQLStorageApi::StoreInfo& store,
                                                  GraphQLStorageApi::TokenType type) {
  return requestHeaders(storage.get(), store, type);
}

void GraphQLApi::addGraphQLHeaders(orvane::utilities::HttpRequest& request,
                                   const GraphQLStorageApi::StoreInfo& store,
                                   GraphQLStorageApi::TokenType type) {
  for (const auto& header : graphQLHeaders(storage, store, type)) {
    request.AddHeader(header.first, header.second);
  }
}

// --- The browser --------------------------------------------------------------------------------

namespace {

constexpr int kServedStoreVersion = 3;

using Fill = void (*)(const GraphQLStorageApi& storage, const GraphQLStorageApi::StoreInfo& store,
                      TextMap& output);

// Reads the state again. Empties `output`, and calls `fill` for it if a customer is signed in to a
// valid current store.
void fillForBrowser(TextMap* output, std::string* storeUrl, Fill fill) {
  if (output == nullptr && storeUrl == nullptr) {
    return;
  }
  if (orvane::utilities::BookStoreVersionProxy::storeVersion(false) != kServedStoreVersion) {
    return;
  }
  GraphQLStorageApi storage;
  GraphQLStorageApi::StoreInfo store = storage.currentStore();
  if (output != nullptr) {
    output->clear();
    if (storage.isLoggedIn() && store.isValid()) {
      fill(storage, store, *output);
    }
  }
  if (storeUrl != nullptr && store.isValid()) {
    *storeUrl = std::move(store.url);
  }
}

void fillCookies(const GraphQLStorageApi& storage, const GraphQLStorageApi::StoreInfo&,
                 TextMap& cookies) {
  setUnlessEmpty(cookies, "orvane-customer", storage.accessToken());
  setUnlessEmpty(cookies, "orvane-customer-refresh", storage.refreshToken());
  set(cookies, "orvane-serial-number", GetSerialNumber());
  setUnlessEmpty(cookies, "x-magento-cache-id", storage.magentoCacheId());
}

void fillHeaders(const GraphQLStorageApi& storage, const GraphQLStorageApi::StoreInfo& store,
                 TextMap& headers) {
  headers = requestHeaders(&storage, store, GraphQLStorageApi::CustomerRefresh);
}

}  // namespace

// --- Samples ------------------------------------------------------------------------------------

namespace {

const char kSampleApplication[] = "graphql_sample_metadata.app";
constexpr unsigned int kSampleTaskFlags = 37;

// Fixed, because readers of the log search for it and compilers spell it differently.
const char kAddSampleSignature[] = "void addSample(const char *, const char *)";

bool isEmpty(const char* text) {
  return text == nullptr || *text == '\0';
}

void startSampleApplication() {
  const std::string path = joined({"/ombrel/bin/", kSampleApplication});
  if (FindTaskByAppName(path.c_str()) > 0) {
    return;
  }
  std::string argument = path;
  char* const arguments[] = {argument.data(), nullptr};
  NewTask(path.c_str(), arguments, kSampleApplication, kSampleApplication, nullptr,
          kSampleTaskFlags);
}

}  // namespace

}  // namespace graphql

// --- Undecorated names --------------------------------------------------------------------------

extern "C" {

void getBrowserCookies(std::map<std::string, std::string>* cookies, std::string* storeUrl) {
  graphql::fillForBrowser(cookies, storeUrl, graphql::fillCookies);
}

void getBrowserGraphQLHeaders(std::map<std::string, std::string>* headers, std::string* storeUrl) {
  graphql::fillForBrowser(headers, storeUrl, graphql::fillHeaders);
}

bool isLoggedIn() {
  return graphql::GraphQLStorageApi().isLoggedIn();
}

void addSample(const char* bookId, const char* sampleFilePath) {
  if (graphql::isEmpty(bookId)) {
    ov_print_log2(graphql::kLogFailure, __FILE__, __LINE__, graphql::kAddSampleSignature,
                  "Condition: \"bookId && *bookId\", return]");
    return;
  }
  if (graphql::isEmpty(sampleFilePath)) {
    ov_print_log2(graphql::kLogFailure, __FILE__, __LINE__, graphql::kAddSampleSignature,
                  "Condition: \"sampleFilePath && *sampleFilePath\", return]");
    return;
  }
  graphql::GraphQLSampleQueue().addSample(bookId, sampleFilePath);
  graphql::startSampleApplication();
}

}  // extern "C"
