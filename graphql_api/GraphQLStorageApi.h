// The persistent state of the book store: the regional stores and the customer's session, in two
// configuration files of the device. Only one thread at a time may use an object; only isLoggedIn()
// takes the object's mutex. Nothing protects the files from another process.

#ifndef GRAPHQL_API_GRAPHQLSTORAGEAPI_H_
#define GRAPHQL_API_GRAPHQLSTORAGEAPI_H_

#include <mutex>
#include <string>
#include <vector>

namespace graphql {

// The state object. A caller creates one and shares it through a std::shared_ptr; it can neither be
// copied nor moved. Every change of the store list or the session is saved at once; destroying the
// object saves nothing.
//
// The members themselves throw nothing, except isLoggedIn(). Every member that reads or writes a
// file passes on the exceptions of the configuration layer, and std::bad_alloc.
class GraphQLStorageApi {
 public:
  // The credentials in the headers of a request.
  enum TokenType : int {
    None = 0,             // none
    Integration = 1,      // the store's integration token
    Customer = 2,         // the customer's access token
    CustomerRefresh = 3,  // the customer's access token and the refresh token
  };

  // The result of an operation.
  struct ErrorInfo {
    // 0: no error. 1: the response has an error, described by `message`. -1: the transfer failed or
    // the HTTP status is not 200. After sign-in and token refresh it can be a number from the
    // server.
    int error = 0;
    // With `error` -1: the runner's result if it is not 0, else the HTTP status. Otherwise 0.
    int code = 0;
    // The server's own words, in UTF-8; empty without a message.
    std::string message;
  };

  // The result of a sign-in or a token refresh.
  struct LoginInfo {
    std::string accessToken;   // empty unless the operation succeeded
    std::string refreshToken;  // as accessToken
    // The lifetime of the access token in seconds, exactly as the server sent it; never
    // interpreted.
    std::string expiresIn;
    // `error` 0 with an empty access token is possible: the response has neither token nor error.
    ErrorInfo errorInfo;
  };

  // The customer's profile, in UTF-8.
  struct UserInfo {
    std::string email;
    std::string firstname;
    std::string lastname;
  };

  // One regional store. A new record has empty texts and is closed; a lookup without a match
  // returns such a record. All texts are UTF-8, as the server sent them.
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

    // True when `url` and `apiUrl` are both non-empty; ignores the other members.
    bool isValid() const;
  };

  // Stores in the server's order; currentStoreIndex() returns a position in it.
  using StoreInfoList = std::vector<StoreInfo>;

  // Loads the store list file, then the token file; missing files give an empty state.
  GraphQLStorageApi();
  ~GraphQLStorageApi();

  GraphQLStorageApi(const GraphQLStorageApi&) = delete;
  GraphQLStorageApi& operator=(const GraphQLStorageApi&) = delete;

  // Reads both files again, like the constructor, and replaces the state by their content.
  void reload();

  // A copy of the store list.
  StoreInfoList storesList() const;

  // Replaces the store list by a copy of `list`, also of invalid records, and saves it.
  void setStoresList(const StoreInfoList& list);

  // Writes the store list to /mnt/ext1/system/state/cache/store_list.cfg. Keys of a longer, earlier
  // list are not removed from the file, but never read again. A failed save is not reported.
  void saveStoreList();

  // Replaces the store list by the content of /mnt/ext1/system/state/cache/store_list.cfg. Records
  // without `url` or `apiUrl` are left out. Reads all keys of each record that the file claims; of
  // more than 10,000 only the records for which there is a "url" key.
  void loadStoreList();

  // The position of the current store: the first record with the `url`, `apiUrl` and `providerID`
  // of the store that the customer signed in to. Also 0 without a current store; currentStore()
  // shows the difference.
  int currentStoreIndex() const;

  // A copy of the current store, or an empty record.
  StoreInfo currentStore() const;

  // A copy of the first record with exactly this `providerID`, or an empty record.
  StoreInfo storeInfo(const std::string& providerID) const;

  // The customer's access token; empty when signed out. A copy.
  std::string accessToken() const;

  // The token that can be exchanged for new tokens. A copy.
  std::string refreshToken() const;

  // The cache id that the store sent at sign-in. A copy.
  std::string magentoCacheId() const;

  // Replaces the three tokens and saves the session; empty texts sign the customer out.
  // `expiration` is the lifetime as the server sent it, and is never interpreted. Only if `store`
  // is valid, also replaces the identity of the store (its `url`, `apiUrl` and `providerID`) and
  // the cache id: an incomplete record must not erase the identity. Copies all arguments.
  void setTokens(const std::string& accessToken, const std::string& refreshToken,
                 const std::string& expiration, const StoreInfo& store,
                 const std::string& magentoCacheId);

  // Writes the session to /mnt/ext1/system/config/bookstore.cfg, tokens and cache id as secrets.
  // Does nothing while any part of the store's identity is empty. A failed save is not reported.
  void saveTokens();

  // Replaces the session by the content of /mnt/ext1/system/config/bookstore.cfg. Changes nothing
  // if that file does not contain the device's own access token.
  void loadTokens();

  // True when there is an access token, even if it is expired. Locks the mutex while it reads the
  // token; throws std::system_error when the mutex cannot be locked.
  bool isLoggedIn();

  // Empties the three tokens and saves; the store's identity and the cache id are unchanged.
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
