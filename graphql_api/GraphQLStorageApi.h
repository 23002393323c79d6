// The persistent state of the book store: the regional stores and the customer's session, kept in
// two configuration files of the device. One object is used by one thread at a time; isLoggedIn()
// alone takes the object's mutex. Nothing guards the files against another process.

#ifndef GRAPHQL_API_GRAPHQLSTORAGEAPI_H_
#define GRAPHQL_API_GRAPHQLSTORAGEAPI_H_

#include <mutex>
#include <string>
#include <vector>

namespace graphql {

// The state object. A caller creates one and shares it through a std::shared_ptr; it is neither
// copied nor moved. Every change that a member makes to the store list or the session is written
// when it is made, nothing when the object is destroyed.
//
// No member throws an exception of its own. What the configuration layer throws, or the standard
// library for want of memory, reaches the caller from every member that names a file below.
class GraphQLStorageApi {
 public:
  // The credentials that a request carries.
  enum TokenType : int {
    None = 0,             // none
    Integration = 1,      // the store's integration token
    Customer = 2,         // the customer's access token
    CustomerRefresh = 3,  // the customer's access token and the refresh token
  };

  // How an operation ended.
  struct ErrorInfo {
    // 0: no error. 1: the store answered with an error, which `message` tells. -1: the transfer
    // failed or the HTTP status was not 200. Sign-in and token refresh can put a number of the
    // server's own here.
    int error = 0;
    // With `error` -1: the runner's result when that was not 0, else the HTTP status. Otherwise 0.
    int code = 0;
    // The server's own words, in UTF-8; empty when it said nothing.
    std::string message;
  };

  // What a sign-in or a token refresh gave.
  struct LoginInfo {
    std::string accessToken;   // empty unless the operation succeeded
    std::string refreshToken;  // as accessToken
    // The lifetime of the access token exactly as the server told it, in seconds; never
    // interpreted.
    std::string expiresIn;
    // `error` 0 with an empty access token is possible: the answer held neither token nor error.
    ErrorInfo errorInfo;
  };

  // The customer's profile, in UTF-8.
  struct UserInfo {
    std::string email;
    std::string firstname;
    std::string lastname;
  };

  // One regional store. A fresh record has all texts empty and is closed; that is also what a
  // lookup that finds nothing returns. All texts are UTF-8 as the server sent them.
  struct StoreInfo {
    std::string storeName;         // as shown to the user
    std::string url;               // web address; one third of the store's identity
    std::string apiUrl;            // GraphQL endpoint, absolute; one third of the identity
    std::string language;          // readable name of the language
    std::string langCode;          // code of the language
    std::string storeCode;         // code of the store at the commerce platform
    std::string integrationToken;  // empty when the store has none; a secret
    std::string providerID;        // provider of the store; one third of the identity
    std::string currency;          // currency code
    bool status = false;           // the store is open

    // True when `url` and `apiUrl` are both non-empty; nothing else is looked at.
    bool isValid() const;
  };

  // Stores in the server's order; positions in it are what currentStoreIndex() returns.
  using StoreInfoList = std::vector<StoreInfo>;

  // Loads the store list file, then the token file; missing files give an empty state. Throws what
  // the configuration layer throws.
  GraphQLStorageApi();
  ~GraphQLStorageApi();

  GraphQLStorageApi(const GraphQLStorageApi&) = delete;
  GraphQLStorageApi& operator=(const GraphQLStorageApi&) = delete;

  // Reads both files again, as the constructor does, and replaces the state by their content.
  void reload();

  // A copy of the store list.
  StoreInfoList storesList() const;

  // Replaces the store list by a copy of `list`, whatever its records hold, and saves it.
  void setStoresList(const StoreInfoList& list);

  // Writes the store list to /mnt/ext1/system/state/cache/store_list.cfg. Keys of records that a
  // longer, earlier list left there are not removed; they are never read again.
  void saveStoreList();

  // Replaces the store list by the content of /mnt/ext1/system/state/cache/store_list.cfg. Records
  // without `url` or `apiUrl` are left out. Reads all keys of each record that the file claims; of
  // more than 10,000 only the records for which there is a "url" key.
  void loadStoreList();

  // The position of the current store, which is the first record whose `url`, `apiUrl` and
  // `providerID` are those of the store that the customer signed in to. 0 also when there is none:
  // ask currentStore() to tell the two apart.
  int currentStoreIndex() const;

  // A copy of the current store, or the empty record when there is none.
  StoreInfo currentStore() const;

  // A copy of the first record with exactly this `providerID`, or the empty record.
  StoreInfo storeInfo(const std::string& providerID) const;

  // The customer's access token; empty when signed out. A copy.
  std::string accessToken() const;

  // The token that buys a new access token. A copy.
  std::string refreshToken() const;

  // The cache id that the store gave at sign-in. A copy.
  std::string magentoCacheId() const;

  // Replaces the three tokens and saves the session; empty texts sign the customer out.
  // `expiration` is the lifetime as the server told it and is never interpreted. The identity of
  // the store (its `url`, `apiUrl` and `providerID`) and `magentoCacheId` are taken over only when
  // `store` is valid: an incomplete record must not lose the identity. Copies all arguments.
  void setTokens(const std::string& accessToken, const std::string& refreshToken,
                 const std::string& expiration, const StoreInfo& store,
                 const std::string& magentoCacheId);

  // Writes the session to /mnt/ext1/system/config/bookstore.cfg, tokens and cache id as secrets.
  // Does nothing while any part of the store's identity is empty.
  void saveTokens();

  // Replaces the session by the content of /mnt/ext1/system/config/bookstore.cfg; changes nothing
  // when that file lacks the device's own access token.
  void loadTokens();

  // True when there is an access token, expired or not. Takes the mutex for the look; throws
  // std::system_error when that cannot be locked.
  bool isLoggedIn();

  // Forgets the three tokens and saves; the store's identity and the cache id stay.
  void logoutOnlyFromStore();

 private:
  StoreInfoList::const_iterator findCurrentStore() const;
  bool isAnyTokenEmpty() const;
  template <typename Values, typename State>
  static void visitSession(const Values& values, State& state);

  // The order of the members is part of the binary interface.
  StoreInfoList storesList_;
  std::string accessToken_;
  std::string refreshToken_;
  std::string tokenExpiration_;
  std::string storeUrl_;
  std::string storeApiUrl_;
  std::string storeProvider_;
  std::string magentoCacheId_;
  std::mutex mutex_;
};

}  // namespace graphql

#endif  // GRAPHQL_API_GRAPHQLSTORAGEAPI_H_
