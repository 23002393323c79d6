// The same operations with minimal work: sends the same bytes with libcurl on one prepared handle,
// and reads the same fields with JsonCpp into the same records. Logs and stores nothing.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <curl/curl.h>
#include <json/json.h>

#include "bench/Inputs.h"
#include "bench/Measure.h"
#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using graphql::GraphQLApi;
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

// All options are set once; only the responses differ between exchanges.
class PreparedHandle {
 public:
  explicit PreparedHandle(const Request& request) : url_(request.url), body_(request.body) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    curl_.reset(curl_easy_init());
    for (const std::string& header : request.headers) {
      headers_.reset(curl_slist_append(headers_.release(), header.c_str()));
    }
    connectTo_.reset(curl_slist_append(nullptr, environment("ORVANE_CONNECT_TO").c_str()));
    set(CURLOPT_URL, url_.c_str());
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
    set(CURLOPT_WRITEDATA, &text_);
  }

  // Sends the request and parses the response.
  void perform() {
    text_.clear();
    const CURLcode code = curl_easy_perform(curl_.get());
    long status = 0;
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
    if (code != CURLE_OK || status != 200) {
      throw std::runtime_error(std::string(curl_easy_strerror(code)) + ", status " +
                               std::to_string(status));
    }
    std::string faults;
    if (!reader_->parse(text_.data(), text_.data() + text_.size(), &answer_, &faults)) {
      throw std::runtime_error(faults);
    }
  }

  // The response to the last perform().
  const Json::Value& answer() const { return answer_; }

  // A header of that response; empty if the response does not have it.
  std::string header(const char* name) const {
    curl_header* found = nullptr;
    return curl_easy_header(curl_.get(), name, 0, CURLH_HEADER, -1, &found) == CURLHE_OK
               ? found->value
               : "";
  }

  const std::string& url() const { return url_; }

 private:
  template <typename Value>
  void set(CURLoption option, Value value) {
    if (curl_easy_setopt(curl_.get(), option, value) != CURLE_OK) {
      throw std::runtime_error("libcurl refuses option " + std::to_string(option));
    }
  }

  static std::size_t keep(char* data, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
  }

  struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  const std::string url_;
  const std::string body_;
  std::unique_ptr<curl_slist, Free> headers_;
  std::unique_ptr<curl_slist, Free> connectTo_;
  std::unique_ptr<CURL, Free> curl_;
  std::string text_;
  const std::unique_ptr<Json::CharReader> reader_{Json::CharReaderBuilder().newCharReader()};
  Json::Value answer_;
};

// A row that sends `request` and returns the fields that `read` finds in the response.
template <typename Read>
bench::Row bareRow(const char* name, Request (*request)(), Read read) {
  return bench::row(name, [=] {
    const auto handle = std::make_shared<PreparedHandle>(request());
    return [=] {
      handle->perform();
      return read(*handle);
    };
  });
}

// The headers of a request to the store. The identity is that of the device in scripts/bench. An
// empty `token` is omitted.
std::vector<std::string> headersOf(const std::string& token) {
  std::vector<std::string> headers = {
      "Accept:",
      "Expect:",
      "Content-Type: application/json",
      "Cookie: orvane-currency=EUR; orvane-locale=de; orvane-store=de_de",
      "Store: de_de",
      "User-Agent: Orvane Reader/417(screen 1200x1600; FW 3.2.105)",
      "x-header-deviceid: BENCH00000000001",
      "x-header-reader-model: eink 417",
      "x-header-software-version: 3.2.105",
  };
  if (!token.empty()) {
    headers.insert(headers.begin() + 2, "Authorization: Bearer " + token);
  }
  return headers;
}

// --- Store discovery ----------------------------------------------------------------------------

Request discovery() {
  return {"https://" GRAPHQL_API_DISCOVERY_HOST "/graphql",
          R"({"query":"query availableBookStores {\navailableBookStores {\nurl\napiUrl\n)"
          R"(storeName\nlanguage\nlangCode\nstoreCode\nstatus\nintegrationToken\nproviderID\n)"
          R"(currency\n}\n}","variables":null})"
          "\n",
          headersOf("")};
}

GraphQLStorageApi::StoreInfoList readStores(const PreparedHandle& handle) {
  GraphQLStorageApi::StoreInfoList stores;
  for (const Json::Value& value : handle.answer()["data"]["availableBookStores"]) {
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
    stores.push_back(std::move(store));
  }
  return stores;
}

// --- Sign-in and token refresh ------------------------------------------------------------------

Request signIn() {
  const GraphQLStorageApi::StoreInfo store = bench::storeOf("sign-in");
  const std::string variables = R"({"email":")" + std::string(bench::kEmail) + R"(","password":")" +
                                bench::kPassword + R"("})";
  return {store.apiUrl,
          R"({"query":"mutation generateCustomerToken($email: String!, $password: String!) {\n)"
          R"(generateCustomerToken(email: $email, password: $password) {\n)"
          R"(token\nrefresh_token\nexpires_in\n}\n}","variables":)" +
              variables + "}\n",
          headersOf(store.integrationToken)};
}

Request tokenRefresh() {
  const GraphQLStorageApi::StoreInfo store = bench::storeOf("token-refresh");
  return {store.apiUrl,
          R"({"query":"mutation refreshTokens($refreshToken: String!) {\n)"
          R"(refreshTokens(refresh_token: $refreshToken) {\n)"
          R"(access_token\nrefresh_token\nexpires_in\n}\n}","variables":{"refreshToken":")" +
              std::string(bench::kRefreshToken) + "\"}}\n",
          headersOf(store.integrationToken)};
}

bench::Session readSession(const Json::Value& result, const char* tokenName) {
  bench::Session session;
  session.login.accessToken = result[tokenName].asString();
  session.login.refreshToken = result["refresh_token"].asString();
  session.login.expiresIn = result["expires_in"].asString();
  return session;
}

bench::Session readSignIn(const PreparedHandle& handle) {
  bench::Session session = readSession(handle.answer()["data"]["generateCustomerToken"], "token");
  session.cacheId = handle.header("x-magento-cache-id");
  return session;
}

bench::Session readTokenRefresh(const PreparedHandle& handle) {
  return readSession(handle.answer()["data"]["refreshTokens"], "access_token");
}

// --- Customer and product -----------------------------------------------------------------------

Request profile() {
  return {bench::storeOf("profile").apiUrl,
          R"({"query":"query customer {\ncustomer {\nemail\nfirstname\nlastname\n}\n}",)"
          R"("variables":null})"
          "\n",
          headersOf(bench::kAccessToken)};
}

GraphQLStorageApi::UserInfo readProfile(const PreparedHandle& handle) {
  const Json::Value& customer = handle.answer()["data"]["customer"];
  GraphQLStorageApi::UserInfo info;
  info.email = customer["email"].asString();
  info.firstname = customer["firstname"].asString();
  info.lastname = customer["lastname"].asString();
  return info;
}

Request sampleMetadata() {
  return {bench::storeOf("sample-metadata").apiUrl,
          R"({"query":"{\nproductDetails(uid: \")" + std::string(bench::kUid) +
              R"(\") {\nproduct {\nuid\nname\nthumbnail {\nurl\n}\nprice_range {\n)"
              R"(minimum_price {\nfinal_price {\ncurrency\nvalue\n}\nregular_price {\n)"
              R"(currency\nvalue\n}\n}\n}\nauthors {\nfull_name\n}\n}\n}\n}\n",)"
              R"("variables":null})"
              "\n",
          headersOf(bench::kAccessToken)};
}

std::string priceText(const Json::Value& money) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%s %.2f", money["currency"].asCString(),
                money["value"].asDouble());
  return text.data();
}

GraphQLApi::SampleMetadata readSampleMetadata(const PreparedHandle& handle) {
  const Json::Value& product = handle.answer()["data"]["productDetails"]["product"];
  const Json::Value& price = product["price_range"]["minimum_price"];
  GraphQLApi::SampleMetadata metadata;
  metadata.apiUrl = handle.url();
  metadata.uid = product["uid"].asString();
  metadata.name = product["name"].asString();
  metadata.author = product["authors"][0]["full_name"].asString();
  metadata.price = priceText(price["final_price"]);
  if (price["final_price"]["value"] != price["regular_price"]["value"]) {
    metadata.oldPrice = priceText(price["regular_price"]);
  }
  metadata.thumbnailUrl = product["thumbnail"]["url"].asString();
  return metadata;
}

const std::vector<bench::Row>& rows() {
  static const std::vector<bench::Row> all = {
      bareRow("discovery", discovery, readStores),
      bareRow("sign-in", signIn, readSignIn),
      bareRow("token-refresh", tokenRefresh, readTokenRefresh),
      bareRow("profile", profile, readProfile),
      bareRow("sample-metadata", sampleMetadata, readSampleMetadata),
  };
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::runProgram(argc, argv, rows());
}
