#include "graphql_api/GraphQLApi.h"

#include <clocale>
#include <locale>
#include <utility>
#include <vector>

#include <json/json.h>
#include <orvane/utilities/HttpRequestRunner.h>

#include "graphql_api/GraphQLHeader.h"
#include "graphql_api/Log.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;

namespace graphql {

namespace {

constexpr long kStatusOk = 200;
constexpr unsigned int kTransferLimit = 30;

// Json::Reader reads real numbers by the global C++ locale and gives up on "9.99" where that groups
// digits with points. In such a process the global locale counts in the classic way while this
// object lives; everywhere else nothing is touched.
class ClassicNumbers {
 public:
  ClassicNumbers() {
    const auto& numbers = std::use_facet<std::numpunct<char>>(previous_);
    if (numbers.decimal_point() == '.' && numbers.grouping().empty()) {
      return;
    }
    // A locale without a name leaves the C locale alone; the way back does not.
    previousC_ = std::setlocale(LC_ALL, nullptr);  // NOLINT(concurrency-mt-unsafe)
    std::locale::global(std::locale(previous_, new std::numpunct<char>));
  }

  ~ClassicNumbers() {
    if (!previousC_.empty()) {
      std::locale::global(previous_);
      std::setlocale(LC_ALL, previousC_.c_str());  // NOLINT(concurrency-mt-unsafe)
    }
  }

  ClassicNumbers(const ClassicNumbers&) = delete;
  ClassicNumbers& operator=(const ClassicNumbers&) = delete;

 private:
  const std::locale previous_;
  std::string previousC_;
};

// FastWriter and Reader are deprecated upstream. They are used on purpose: the bytes that
// FastWriter gives are what the service has always been sent, and Reader accepts what it has always
// answered.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

std::string writeJson(const Json::Value& value) {
  return Json::FastWriter().write(value);
}

// A body that cannot be parsed leaves the value null or partly filled: either has no data.
void parseJson(const std::vector<char>& body, Json::Value* value) {
  const ClassicNumbers classicNumbers;
  const bool collectComments = true;
  Json::Reader().parse(body.data(), body.data() + body.size(), *value, collectComments);
}

#pragma GCC diagnostic pop

// The member `name` of `value`; null when `value` is not an object or has no such member.
const Json::Value* findMember(const Json::Value& value, const std::string& name) {
  return value.isObject() ? value.find(name.data(), name.data() + name.size()) : nullptr;
}

}  // namespace

// What one operation says of itself; perform() does the rest.
struct GraphQLApi::Operation {
  Operation(const char* itsSignature, const GraphQLStorageApi::StoreInfo& itsStore)
      : signature(itsSignature), store(itsStore), url(itsStore.apiUrl) {}

  // What happens, and in which order, when the transfer failed or the status is not 200.
  enum class Failure {
    Combined,  // both alike: log, callback
  };

  const char* const signature;                // the place that its log lines name
  const GraphQLStorageApi::StoreInfo& store;  // whom the headers address
  std::string url;
  std::string query;
  Json::Value variables;  // null when the operation takes none
  GraphQLStorageApi::TokenType tokenType = GraphQLStorageApi::None;
  Failure failure = Failure::Combined;
  const char* failureFormat = nullptr;   // takes the runner's result and the status, both int
  const char* responseFormat = nullptr;  // takes the answer's text
};

// What came back.
struct GraphQLApi::Answer {
  int err = 0;
  long status = 0;
  std::vector<char> body;
  Json::Value root;

  bool failed() const { return err != 0 || status != kStatusOk; }

  int code() const { return static_cast<int>(status); }

  // The operation's own member under "data"; null when the answer has none.
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

void GraphQLApi::addGraphQLHeaders(HttpRequest& request, const GraphQLStorageApi::StoreInfo& store,
                                   GraphQLStorageApi::TokenType type) {
  for (const auto& header : graphQLHeaders(storage, store, type)) {
    request.AddHeader(header.first, header.second);
  }
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

GraphQLApi::Answer GraphQLApi::perform(const Operation& operation) {
  Answer answer;
  answer.err = transfer(operation, &answer);
  if (answer.failed()) {
    reportFailure(operation, &answer);
    return answer;
  }
  parseJson(answer.body, &answer.root);
  ov_print_log2(kLogInformation, __FILE__, __LINE__, operation.signature, operation.responseFormat,
                answer.root.toStyledString().c_str());
  return answer;
}

int GraphQLApi::transfer(const Operation& operation, Answer* answer) {
  HttpRequest request("POST", operation.url);
  Json::Value body;
  body["query"] = operation.query;
  body["variables"] = operation.variables;
  request.AddPostData(writeJson(body));
  addGraphQLHeaders(request, operation.store, operation.tokenType);
  return HttpRequestRunner().PerformRequest(request, &answer->status, &answer->body,
                                            kTransferLimit);
}

void GraphQLApi::reportFailure(const Operation& operation, Answer* answer) {
  const auto log = [&] {
    ov_print_log2(kLogFailure, __FILE__, __LINE__, operation.signature, operation.failureFormat,
                  answer->err, answer->code());
  };
  const auto callBack = [&] {
    if (errorCb) {
      errorCb(answer->err, answer->code());
    }
  };
  switch (operation.failure) {
    case Operation::Failure::Combined:
      log();
      callBack();
      break;
  }
}

// --- Store discovery ----------------------------------------------------------------------------

namespace {

const char kStoresQuery[] =
    "query availableBookStores {\navailableBookStores {\nurl\napiUrl\nstoreName\nlanguage\n"
    "langCode\nstoreCode\nstatus\nintegrationToken\nproviderID\ncurrency\n}\n}";
static_assert(sizeof(kStoresQuery) - 1 == 146, "the service knows this text byte for byte");

// Whom the discovery addresses before any store is known.
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
  store.storeName = value["storeName"].asString();
  store.url = value["url"].asString();
  store.apiUrl = value["apiUrl"].asString();
  store.language = value["language"].asString();
  store.langCode = value["langCode"].asString();
  store.storeCode = value["storeCode"].asString();
  store.integrationToken = value["integrationToken"].asString();
  store.providerID = value["providerID"].asString();
  store.currency = value["currency"].asString();
  if (store.storeName.empty()) {
    store.storeName = store.language;
  }
  return store;
}

}  // namespace

GraphQLStorageApi::StoreInfoList GraphQLApi::getStores() {
  const GraphQLStorageApi::StoreInfo addressed = discoveryStore();
  Operation operation(__PRETTY_FUNCTION__, addressed);
  operation.url = getGraphQLUrl();
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
  // An answer without stores empties the stored list, too.
  if (storage) {
    storage->setStoresList(stores);
  }
  return stores;
}

}  // namespace graphql
