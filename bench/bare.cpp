// The same operations as little as they can be: the same bytes sent with libcurl on one prepared
// handle, the same fields read with JsonCpp into the same records. Nothing is logged or kept.

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <curl/curl.h>
#include <json/json.h>

#include "bench/Measure.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using graphql::GraphQLStorageApi;

struct Request {
  std::string url;
  std::string body;
  std::vector<std::string> headers;
};

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

// All options are set once; what differs from one transfer to the next is the answer.
class PreparedHandle {
 public:
  explicit PreparedHandle(const Request& request) : body_(request.body) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    curl_.reset(curl_easy_init());
    for (const std::string& header : request.headers) {
      headers_.reset(curl_slist_append(headers_.release(), header.c_str()));
    }
    connectTo_.reset(curl_slist_append(nullptr, environment("ORVANE_CONNECT_TO").c_str()));
    set(CURLOPT_URL, request.url.c_str());
    set(CURLOPT_CONNECT_TO, connectTo_.get());
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_HTTPHEADER, headers_.get());
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
    set(CURLOPT_POSTFIELDS, body_.c_str());
    set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    set(CURLOPT_CAINFO, environment("ORVANE_CA_FILE").c_str());
    set(CURLOPT_CA_CACHE_TIMEOUT, -1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TIMEOUT, 30L);
    set(CURLOPT_WRITEFUNCTION, &PreparedHandle::keep);
    set(CURLOPT_WRITEDATA, &answer_);
  }

  // Sends the request; returns the parsed answer, valid until the next call.
  const Json::Value& perform() {
    answer_.clear();
    const CURLcode code = curl_easy_perform(curl_.get());
    long status = 0;
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
    if (code != CURLE_OK || status != 200) {
      throw std::runtime_error(std::string(curl_easy_strerror(code)) + ", status " +
                               std::to_string(status));
    }
    std::string faults;
    if (!reader_->parse(answer_.data(), answer_.data() + answer_.size(), &root_, &faults)) {
      throw std::runtime_error(faults);
    }
    return root_;
  }

 private:
  template <typename Value>
  void set(CURLoption option, Value value) {
    if (curl_easy_setopt(curl_.get(), option, value) != CURLE_OK) {
      throw std::runtime_error("libcurl refuses option " + std::to_string(option));
    }
  }

  static std::size_t keep(char* data, std::size_t size, std::size_t count, void* answer) {
    static_cast<std::string*>(answer)->append(data, size * count);
    return size * count;
  }

  struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  std::string body_;
  std::unique_ptr<curl_slist, Free> headers_;
  std::unique_ptr<curl_slist, Free> connectTo_;
  std::unique_ptr<CURL, Free> curl_;
  std::string answer_;
  const std::unique_ptr<Json::CharReader> reader_{Json::CharReaderBuilder().newCharReader()};
  Json::Value root_;
};

// A row that sends `request` and takes what `read` finds in the answer.
template <typename Read>
bench::Row bareRow(const char* name, Request (*request)(), Read read) {
  return bench::row(name, [=] {
    const auto handle = std::make_shared<PreparedHandle>(request());
    return [=] { return read(handle->perform()); };
  });
}

// The identity is that of scripts/bench's device.
std::vector<std::string> headers(const std::string& currency, const std::string& language,
                                 const std::string& store) {
  return {
      "Accept:",
      "Expect:",
      "Content-Type: application/json",
      "Cookie: orvane-currency=" + currency + "; orvane-locale=" + language +
          "; orvane-store=" + store,
      "Store: " + store,
      "User-Agent: Orvane Reader/417(screen 1200x1600; FW 3.2.105)",
      "x-header-deviceid: BENCH00000000001",
      "x-header-reader-model: eink 417",
      "x-header-software-version: 3.2.105",
  };
}

// --- Store discovery ----------------------------------------------------------------------------

Request discovery() {
  return {"https://" GRAPHQL_API_DISCOVERY_HOST "/graphql",
          R"({"query":"query availableBookStores {\navailableBookStores {\nurl\napiUrl\n)"
          R"(storeName\nlanguage\nlangCode\nstoreCode\nstatus\nintegrationToken\nproviderID\n)"
          R"(currency\n}\n}","variables":null})"
          "\n",
          headers("EUR", "de", "de_de")};
}

GraphQLStorageApi::StoreInfoList readStores(const Json::Value& answer) {
  GraphQLStorageApi::StoreInfoList stores;
  for (const Json::Value& value : answer["data"]["availableBookStores"]) {
    if (!value["status"].asBool()) {
      continue;
    }
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
    stores.push_back(store);
  }
  return stores;
}

const std::vector<bench::Row>& rows() {
  static const std::vector<bench::Row> all = {
      bareRow("discovery", discovery, readStores),
  };
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::runProgram(argc, argv, rows());
}
