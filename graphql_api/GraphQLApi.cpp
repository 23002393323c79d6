#include "graphql_api/GraphQLApi.h"

#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include <json/json.h>
#include <orvane/utilities/HttpRequestRunner.h>
#include <orvane/utilities/Str.h>

#include "graphql_api/JsonText.h"
#include "graphql_api/Log.h"
#include "graphql_api/Price.h"
#include "graphql_api/StringUtils.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;
using orvane::utilities::Str;

namespace graphql {

namespace {

constexpr long kStatusOk = 200;
constexpr unsigned int kTransferLimit = 30;

// The member `name` of `value`; null when `value` is not an object or has no such member.
const Json::Value* findMember(const Json::Value& value, const std::string& name) {
  return value.isObject() ? value.find(name.data(), name.data() + name.size()) : nullptr;
}

// Sets the member `name` of `object`.
void set(Json::Value& object, const char* name, const std::string& text) {
  object[name] = text;
}

// Reads the member `name` of `object` into `*text`.
void read(const Json::Value& object, const char* name, std::string* text) {
  *text = object[name].asString();
}

void logResponse(const char* signature, const char* format, const Json::Value& root) {
  ov_print_log2(kLogInformation, __FILE__, __LINE__, signature, format,
                root.toStyledString().c_str());
}

// Runs the callback in `slot`, which may replace itself while it runs. It is moved out for the
// call, not copied, because it must keep its state until the next failure. During the call `slot`
// refers to it, because an operation that the callback calls can fail, too.
class RunningCallback {
 public:
  explicit RunningCallback(GraphQLApi::ErrorCallback& slot) : slot_(slot) {
    callback_.swap(slot_);
    slot_ = std::ref(callback_);
  }
  // Moves it back unless it was replaced; also when it throws.
  ~RunningCallback() {
    const auto* current = slot_.target<std::reference_wrapper<GraphQLApi::ErrorCallback>>();
    if (current != nullptr && &current->get() == &callback_) {
      slot_.swap(callback_);
    }
  }

  RunningCallback(const RunningCallback&) = delete;
  RunningCallback& operator=(const RunningCallback&) = delete;

  void operator()(int err, int code) { callback_(err, code); }

 private:
  GraphQLApi::ErrorCallback& slot_;
  GraphQLApi::ErrorCallback callback_;
};

}  // namespace

// What differs between operations; perform() does the rest.
struct GraphQLApi::Operation {
  Operation(const char* itsSignature, const std::string& url,
            const GraphQLStorageApi::StoreInfo& itsStore)
      : request("POST", url), signature(itsSignature), store(itsStore) {}

  // What happens, and in which order, when the transfer failed or the status is not 200.
  enum class Failure {
    Combined,             // both alike: log, callback
    TransportOnly,        // failed transfer: log, callback; status: nothing
    TransportThenStatus,  // failed transfer: log; status: callback, parse, log
    Session,              // both alike: callback, the tokens if wanted, parse, log
  };

  HttpRequest request;
  const char* const signature;                // for its log lines
  const GraphQLStorageApi::StoreInfo& store;  // for the headers
  std::string query;
  Json::Value variables;  // null when the operation takes none
  GraphQLStorageApi::TokenType tokenType = GraphQLStorageApi::None;
  bool logsRequest = false;
  bool takesHeaders = false;  // such a transfer has no time limit
  Failure failure = Failure::Combined;
  bool clearsTokens = false;             // a failure empties the tokens of the storage
  const char* failureFormat = nullptr;   // for the runner's result and the status, both int
  const char* responseFormat = nullptr;  // for the text of the response; null: not logged here
};

// The response, or the failure of the transfer.
struct GraphQLApi::Answer {
  int err = 0;
  long status = 0;
  std::unordered_map<std::string, std::string> headers;
  std::vector<char> body;
  Json::Value root;

  bool failed() const { return err != 0 || status != kStatusOk; }

  int code() const { return static_cast<int>(status); }

  // The failure as a result.
  ApiError apiError() const { return err != 0 ? NetworkError : BadResponse; }
  GraphQLStorageApi::ErrorInfo errorInfo() const {
    GraphQLStorageApi::ErrorInfo info;
    info.error = -1;
    info.code = err != 0 ? err : code();
    return info;
  }

  // The operation's member of "data"; null when it is missing.
  const Json::Value* result(const std::string& name) const {
    const Json::Value* data = findMember(root, "data");
    return data == nullptr ? nullptr : findMember(*data, name);
  }
};

GraphQLApi::GraphQLApi(const std::shared_ptr<GraphQLStorageApi>& itsStorage)
    : storage(itsStorage) {}

std::string GraphQLApi::getGraphQLUrl() const {
  return "https://" GRAPHQL_API_DISCOVERY_HOST "/graphql";
}

void GraphQLApi::setErrorCb(ErrorCallback callback) {
  errorCb.swap(callback);
}

std::string GraphQLApi::getErrorMessage(Json::Value& response) {
  const Json::Value* errors = findMember(response, "errors");
  if (errors == nullptr || !errors->isArray()) {
    return std::string();
  }
  for (const Json::Value& error : *errors) {
    if (const Json::Value* message = findMember(error, "message")) {
      return message->asString();
    }
  }
  return std::string();
}

GraphQLStorageApi::ErrorInfo GraphQLApi::makeErrorInfo(Json::Value& response) {
  GraphQLStorageApi::ErrorInfo info;
  info.message = getErrorMessage(response);
  info.error = info.message.empty() ? 0 : 1;
  return info;
}

// --- The frame of every operation ---------------------------------------------------------------

GraphQLApi::Answer GraphQLApi::perform(Operation& operation) {
  Answer answer;
  answer.err = transfer(operation, &answer);
  if (answer.failed()) {
    reportFailure(operation, &answer);
    return answer;
  }
  parseJson(answer.body, &answer.root);
  if (operation.responseFormat != nullptr) {
    logResponse(operation.signature, operation.responseFormat, answer.root);
  }
  return answer;
}

int GraphQLApi::transfer(Operation& operation, Answer* answer) {
  HttpRequest& request = operation.request;
  Json::Value body;
  set(body, "query", operation.query);
  body["variables"] = operation.variables;
  request.AddPostData(writeJson(body));
  addGraphQLHeaders(request, operation.store, operation.tokenType);
  if (operation.logsRequest) {
    ov_print_log2(kLogInformation, __FILE__, __LINE__, operation.signature, "curl request [%s]",
                  request.toCurlRequest().c_str());
  }
  if (!operation.takesHeaders) {
    return HttpRequestRunner().PerformRequest(request, &answer->status, &answer->body,
                                              kTransferLimit);
  }
  const auto appendToBody = [answer](std::size_t length, const char* data) {
    answer->body.insert(answer->body.end(), data, data + length);
    return length;
  };
  return HttpRequestRunner().PerformRequest(request, &answer->status, &answer->headers, {},
                                            appendToBody, {});
}

void GraphQLApi::reportFailure(const Operation& operation, Answer* answer) {
  const auto log = [&] {
    ov_print_log2(kLogFailure, __FILE__, __LINE__, operation.signature, operation.failureFormat,
                  answer->err, answer->code());
  };
  const auto callBack = [&] {
    if (errorCb) {
      RunningCallback callback(errorCb);
      callback(answer->err, answer->code());
    }
  };
  switch (operation.failure) {
    case Operation::Failure::Combined:
      log();
      callBack();
      break;
    case Operation::Failure::TransportOnly:
      if (answer->err != 0) {
        log();
        callBack();
      }
      break;
    case Operation::Failure::TransportThenStatus:
      if (answer->err == 0) {
        callBack();
        parseJson(answer->body, &answer->root);
      }
      log();
      break;
    case Operation::Failure::Session:
      callBack();
      if (operation.clearsTokens) {
        storeTokens(GraphQLStorageApi::LoginInfo(), GraphQLStorageApi::StoreInfo(), std::string());
      }
      parseJson(answer->body, &answer->root);
      log();
      break;
  }
}

// --- Store discovery ----------------------------------------------------------------------------

namespace {

const char kStoresQuery[] =
    "query availableBookStores {\navailableBookStores {\nurl\napiUrl\nstoreName\nlanguage\n"
    "langCode\nstoreCode\nstatus\nintegrationToken\nproviderID\ncurrency\n}\n}";
static_assert(sizeof(kStoresQuery) - 1 == 146, "the service knows this text byte for byte");

// The store in the headers of the discovery, which runs before any store is known.
GraphQLStorageApi::StoreInfo discoveryStore() {
  GraphQLStorageApi::StoreInfo store;
  store.storeCode = "de_de";
  store.langCode = "de";
  store.currency = "EUR";
  return store;
}

GraphQLStorageApi::StoreInfo readStore(const Json::Value& value) {
  GraphQLStorageApi::StoreInfo store;
  store.status = true;
  read(value, "storeName", &store.storeName);
  read(value, "url", &store.url);
  read(value, "apiUrl", &store.apiUrl);
  read(value, "language", &store.language);
  read(value, "langCode", &store.langCode);
  read(value, "storeCode", &store.storeCode);
  read(value, "integrationToken", &store.integrationToken);
  read(value, "providerID", &store.providerID);
  read(value, "currency", &store.currency);
  if (store.storeName.empty()) {
    store.storeName = store.language;
  }
  return store;
}

}  // namespace

GraphQLStorageApi::StoreInfoList GraphQLApi::getStores() {
  const GraphQLStorageApi::StoreInfo addressed = discoveryStore();
  Operation operation(__PRETTY_FUNCTION__, getGraphQLUrl(), addressed);
  operation.query = kStoresQuery;
  operation.failure = Operation::Failure::Combined;
  operation.failureFormat = "getStores failed err = %d, code = %d";
  operation.responseFormat = "Stores responce: [%s]";

  const Answer answer = perform(operation);
  if (answer.failed()) {
    return GraphQLStorageApi::StoreInfoList();
  }
  GraphQLStorageApi::StoreInfoList stores;
  const Json::Value* listed = answer.result("availableBookStores");
  if (listed != nullptr && listed->isArray()) {
    for (const Json::Value& element : *listed) {
      if (element["status"].asBool()) {
        stores.push_back(readStore(element));
      }
    }
  }
  // On purpose: a response without stores empties the stored list.
  if (storage) {
    storage->setStoresList(stores);
  }
  return stores;
}

// --- Sign-in and token refresh ------------------------------------------------------------------

namespace {

const char kSignInQuery[] =
    "mutation generateCustomerToken($email: String!, $password: String!) {\n"
    "generateCustomerToken(email: $email, password: $password) {\n"
    "token\nrefresh_token\nexpires_in\n}\n}";

const char kRefreshQuery[] =
    "mutation refreshTokens($refreshToken: String!) {\n"
    "refreshTokens(refresh_token: $refreshToken) {\n"
    "access_token\nrefresh_token\nexpires_in\n}\n}";

// The number in the response to a refused sign-in. Its type is not tested: JsonCpp throws for a
// text.
int signInCode(const Json::Value& root) {
  const Json::Value* code = findMember(root, "code");
  return code == nullptr ? 0 : code->asInt();
}

// The number in the response to a refused refresh, where on purpose only an integer counts.
int refreshCode(const Json::Value& root) {
  const Json::Value* code = findMember(root, "code");
  return code != nullptr && code->isInt() ? code->asInt() : 1;
}

// Exactly this name: if the runner keeps the server's letter case, there may be no cache id.
std::string readCacheId(const std::unordered_map<std::string, std::string>& headers) {
  const auto header = headers.find("x-magento-cache-id");
  return header == headers.end() ? std::string() : Str::trim(header->second, Str::WHITESPACE);
}

}  // namespace

GraphQLStorageApi::LoginInfo GraphQLApi::readLogin(Answer* answer, const std::string& resultName,
                                                   const std::string& tokenName) {
  GraphQLStorageApi::LoginInfo login;
  const Json::Value* result = answer->result(resultName);
  const Json::Value* token = result == nullptr ? nullptr : findMember(*result, tokenName);
  if (token == nullptr || !token->isString()) {
    login.errorInfo = makeErrorInfo(answer->root);
    return login;
  }
  login.accessToken = token->asString();
  read(*result, "refresh_token", &login.refreshToken);
  read(*result, "expires_in", &login.expiresIn);
  return login;
}

void GraphQLApi::storeTokens(const GraphQLStorageApi::LoginInfo& login,
                             const GraphQLStorageApi::StoreInfo& store,
                             const std::string& cacheId) {
  if (storage) {
    storage->setTokens(login.accessToken, login.refreshToken, login.expiresIn, store, cacheId);
  }
}

GraphQLStorageApi::LoginInfo GraphQLApi::auth(const GraphQLStorageApi::StoreInfo& store,
                                              const std::string& email,
                                              const std::string& password) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kSignInQuery;
  set(operation.variables, "email", email);
  set(operation.variables, "password", password);
  operation.tokenType = GraphQLStorageApi::Integration;
  operation.logsRequest = true;
  operation.takesHeaders = true;
  operation.failure = Operation::Failure::Session;
  // A failed sign-in clears the stored tokens; a failed refresh keeps them. Both on purpose.
  operation.clearsTokens = true;
  operation.failureFormat = "auth failed err = %d, code = %d";
  operation.responseFormat = "Auth responce: [%s]";

  Answer answer = perform(operation);
  if (answer.failed()) {
    GraphQLStorageApi::LoginInfo login;
    login.errorInfo.error = answer.err != 0 ? -1 : signInCode(answer.root);
    return login;
  }
  GraphQLStorageApi::LoginInfo login = readLogin(&answer, "generateCustomerToken", "token");
  storeTokens(login, store, readCacheId(answer.headers));
  return login;
}

GraphQLStorageApi::LoginInfo GraphQLApi::refreshTokens(const GraphQLStorageApi::StoreInfo& store,
                                                       const std::string& refreshToken) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kRefreshQuery;
  set(operation.variables, "refreshToken", refreshToken);
  operation.tokenType = GraphQLStorageApi::Integration;
  operation.failure = Operation::Failure::Session;
  operation.failureFormat = "auth failed err = %d, code = %d";  // the sign-in's, on purpose
  operation.responseFormat = "RefreshToken responce: [%s]";

  Answer answer = perform(operation);
  if (answer.failed()) {
    GraphQLStorageApi::LoginInfo login;
    login.errorInfo.error = answer.err != 0 ? -1 : refreshCode(answer.root);
    login.errorInfo.code = answer.err;
    return login;
  }
  GraphQLStorageApi::LoginInfo login = readLogin(&answer, "refreshTokens", "access_token");
  // With an empty store record, the identity of the store and the cache id are unchanged.
  storeTokens(login, GraphQLStorageApi::StoreInfo(), std::string());
  return login;
}

// --- Customer account ---------------------------------------------------------------------------

namespace {

const char kEmailAvailableQuery[] =
    "query isEmailAvailable($email: String!) "
    "{\nisEmailAvailable(email: $email) {\n"
    "is_email_available\n}\n}";

// Stores have always been asked for all of this, though only the errors are read.
const char kCreateAccountQuery[] =
    "mutation createCustomer($input: CustomerCreateInput!) "
    "{\ncreateCustomerV2(input: $input) {\n"
    "customer "
    "{\ndate_of_birth\ndefault_billing\ndefault_shipping\nemail\nfirstname\n"
    "is_subscribed\nsubscribe_"
    "status\nlastname\nmiddlename\nprefix\nsuffix\ntaxvat\naddresses {\n"
    "city\ncountry_code\ndefault_billing\ndefault_shipping\nextension_"
    "attributes {\n"
    "attribute_code\nvalue\n}"
    "\nfirstname\nid\nlastname\npostcode\nprefix\nregion {\n"
    "region_code\nregion_id\nregion\n}\nstreet\nsuffix\ntelephone\nvat_id\n}\n}"
    "\n}\n}";

const char kResetPasswordQuery[] =
    "mutation requestPasswordResetEmail($email: String!) {\n"
    "requestPasswordResetEmail(email: $email)\n}";

const char kUserInfoQuery[] = "query customer {\ncustomer {\nemail\nfirstname\nlastname\n}\n}";

}  // namespace

GraphQLApi::ApiError GraphQLApi::isEmailAvailable(const GraphQLStorageApi::StoreInfo& store,
                                                  const std::string& email, bool* available) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kEmailAvailableQuery;
  set(operation.variables, "email", email);
  operation.failure = Operation::Failure::TransportOnly;
  operation.failureFormat = "getStores failed err = %d, code = %d";  // discovery's, on purpose
  operation.responseFormat = "IsEmailAvailable responce: [%s]";

  const Answer answer = perform(operation);
  if (answer.failed()) {
    return answer.apiError();
  }
  const Json::Value* result = answer.result("isEmailAvailable");
  if (result == nullptr) {
    return BadResponse;
  }
  *available = (*result)["is_email_available"].asBool();
  return Ok;
}

GraphQLStorageApi::ErrorInfo GraphQLApi::createAccount(const GraphQLStorageApi::StoreInfo& store,
                                                       const std::string& email,
                                                       const std::string& password,
                                                       const std::string& firstname,
                                                       const std::string& lastname,
                                                       bool isSubscribed) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kCreateAccountQuery;
  Json::Value& input = operation.variables["input"];
  set(input, "email", email);
  set(input, "password", password);
  set(input, "firstname", firstname);
  set(input, "lastname", lastname);
  input["is_subscribed"] = isSubscribed;
  operation.tokenType = GraphQLStorageApi::Integration;
  operation.failure = Operation::Failure::Combined;
  operation.failureFormat = "createAccount failed err = %d, code = %d";

  Answer answer = perform(operation);
  if (answer.failed()) {
    return answer.errorInfo();
  }
  // On purpose before the log: an invalid message throws, and leaves no line there.
  GraphQLStorageApi::ErrorInfo info = makeErrorInfo(answer.root);
  logResponse(operation.signature, "Create account responce: [%s]", answer.root);
  return info;
}

GraphQLStorageApi::ErrorInfo GraphQLApi::resetPassword(const GraphQLStorageApi::StoreInfo& store,
                                                       const std::string& email) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kResetPasswordQuery;
  set(operation.variables, "email", email);
  operation.tokenType = GraphQLStorageApi::Integration;
  operation.failure = Operation::Failure::TransportThenStatus;
  operation.failureFormat = "Recovery password failed err = %d, code = %d";

  Answer answer = perform(operation);
  if (answer.failed()) {
    return answer.errorInfo();
  }
  const Json::Value* mailed = answer.result("requestPasswordResetEmail");
  return mailed != nullptr && mailed->asBool() ? GraphQLStorageApi::ErrorInfo()
                                               : makeErrorInfo(answer.root);
}

GraphQLApi::ApiError GraphQLApi::userInfo(const GraphQLStorageApi::StoreInfo& store,
                                          GraphQLStorageApi::UserInfo* info) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = kUserInfoQuery;
  operation.tokenType = GraphQLStorageApi::Customer;
  operation.failure = Operation::Failure::TransportThenStatus;
  operation.failureFormat = "UserInfo failed err = %d, code = %d";
  operation.responseFormat = "UserInfo responce: [%s]";

  Answer answer = perform(operation);
  if (answer.failed()) {
    return answer.apiError();
  }
  const Json::Value* customer = answer.result("customer");
  if (customer == nullptr || !customer->isObject()) {
    // The record is not returned, but an invalid message has to throw here, too.
    makeErrorInfo(answer.root);
    return BadResponse;
  }
  read(*customer, "email", &info->email);
  read(*customer, "firstname", &info->firstname);
  read(*customer, "lastname", &info->lastname);
  return Ok;
}

// --- Book samples -------------------------------------------------------------------------------

namespace {

const char kSampleMetadataTail[] =
    "\") {\nproduct {\nuid\nname\nthumbnail {\nurl\n}\nprice_range "
    "{\nminimum_price {\n"
    "final_price {\ncurrency\nvalue\n}\nregular_price "
    "{\ncurrency\nvalue\n}\n}\n}\nauthors {\n"
    "full_name\n}\n}\n}\n}\n";
static_assert(sizeof(kSampleMetadataTail) - 1 == 168, "the service knows this text byte for byte");

const char kSamplePriceTail[] =
    "\") {\nproduct {\nuid\nprice_range {\nminimum_price {\nfinal_price "
    "{\ncurrency\nvalue\n}\n"
    "regular_price {\ncurrency\nvalue\n}\n}\n}\n}\n}\n}\n";
static_assert(sizeof(kSamplePriceTail) - 1 == 123, "the service knows this text byte for byte");

// The uid is inserted unchanged; if it breaks the query, no product is found.
std::string sampleQuery(const std::string& uid, const char* tail) {
  return joined({"{\nproductDetails(uid: \"", uid, tail});
}

// The product in the member of the operation; null when any level is missing.
const Json::Value* findProduct(const Json::Value* details) {
  const Json::Value* product = details == nullptr ? nullptr : findMember(*details, "product");
  return product != nullptr && product->isObject() ? product : nullptr;
}

std::string readThumbnailUrl(const Json::Value& product) {
  const Json::Value& thumbnail = product["thumbnail"];
  return thumbnail.isObject() ? thumbnail["url"].asString() : std::string();
}

std::string readAuthor(const Json::Value& product) {
  const Json::Value& authors = product["authors"];
  if (!authors.isArray() || authors.empty()) {
    return std::string();
  }
  const Json::Value* name = findMember(authors[0], "full_name");
  return name != nullptr && name->isString() ? name->asString() : std::string();
}

// The members that only sampleMetadata() reads.
void readDescription(const Json::Value& product, const GraphQLStorageApi::StoreInfo& store,
                     GraphQLApi::SampleMetadata* metadata) {
  metadata->apiUrl = store.apiUrl;
  read(product, "name", &metadata->name);
  metadata->author = readAuthor(product);
  metadata->thumbnailUrl = readThumbnailUrl(product);
}

}  // namespace

// Reads what both sample operations need; `readMore`, if set, reads the rest of the product.
GraphQLApi::SampleMetadata GraphQLApi::fetchSample(Operation& operation, const std::string& uid,
                                                   ProductReader readMore) {
  const Answer answer = perform(operation);
  SampleMetadata metadata;
  metadata.error = answer.apiError();
  const Json::Value* product =
      answer.failed() ? nullptr : findProduct(answer.result("productDetails"));
  if (product == nullptr) {
    return metadata;
  }
  read(*product, "uid", &metadata.uid);
  if (readMore != nullptr) {
    readMore(*product, operation.store, &metadata);
  }
  Json::Value priceRange = (*product)["price_range"];
  if (priceRange.isObject()) {
    fillSamplePrice(metadata, priceRange);
  }
  metadata.error = metadata.uid == uid ? Ok : BadResponse;
  return metadata;
}

GraphQLApi::SampleMetadata GraphQLApi::sampleMetadata(const GraphQLStorageApi::StoreInfo& store,
                                                      const std::string& uid) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = sampleQuery(uid, kSampleMetadataTail);
  operation.tokenType = GraphQLStorageApi::Customer;
  operation.failure = Operation::Failure::TransportThenStatus;
  operation.failureFormat = "Sample metadata failed err = %d, code = %d";
  operation.responseFormat = "Sample metadata responce: [%s]";

  return fetchSample(operation, uid, readDescription);
}

GraphQLApi::SampleMetadata GraphQLApi::samplePriceRefresh(const GraphQLStorageApi::StoreInfo& store,
                                                          const std::string& uid) {
  Operation operation(__PRETTY_FUNCTION__, store.apiUrl, store);
  operation.query = sampleQuery(uid, kSamplePriceTail);
  operation.tokenType = GraphQLStorageApi::Customer;
  operation.failure = Operation::Failure::TransportThenStatus;
  operation.failureFormat = "Sample price refresh failed err = %d, code = %d";
  operation.responseFormat = "Sample price refresh responce: [%s]";

  return fetchSample(operation, uid, nullptr);
}

void GraphQLApi::fillSamplePrice(SampleMetadata& metadata, Json::Value& priceRange) {
  const Json::Value* minimum = findMember(priceRange, "minimum_price");
  if (minimum == nullptr || !minimum->isObject()) {
    return;
  }
  const Json::Value& regularPrice = (*minimum)["regular_price"];
  const std::string currency = regularPrice["currency"].asString();
  const std::string regularAmount = regularPrice["value"].asString();
  const std::string finalAmount = (*minimum)["final_price"]["value"].asString();
  metadata.price = joined({currency, " ", normalizePrice(finalAmount)});
  if (finalAmount != regularAmount) {
    metadata.oldPrice = joined({currency, " ", normalizePrice(regularAmount)});
  }
}

std::string GraphQLApi::normalizePrice(const std::string& amount) {
  return withTwoDecimals(amount);
}

}  // namespace graphql
