// Prints the data that the library gives the embedded browser, as one JSON document. Like the
// device's browser, it opens the library at run time and uses only its three unmangled symbols.
// Usage: browser_state PATH-OF-LIBRARY

#include <dlfcn.h>

#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include <json/json.h>

#include "graphql_api/GraphQLHeader.h"

namespace {

using TextMap = std::map<std::string, std::string>;

struct CloseLibrary {
  void operator()(void* library) const { ::dlclose(library); }
};

using Library = std::unique_ptr<void, CloseLibrary>;

std::runtime_error lastLinkerError() {
  return std::runtime_error(::dlerror());  // NOLINT(concurrency-mt-unsafe)
}

Library open(const char* path) {
  Library library(::dlopen(path, RTLD_NOW | RTLD_LOCAL));
  if (!library) {
    throw lastLinkerError();
  }
  return library;
}

template <typename Function>
Function* find(const Library& library, const char* name) {
  void* symbol = ::dlsym(library.get(), name);
  if (symbol == nullptr) {
    throw lastLinkerError();
  }
  return reinterpret_cast<Function*>(symbol);
}

Json::Value asJson(const TextMap& texts) {
  Json::Value object(Json::objectValue);
  for (const auto& entry : texts) {
    object[entry.first] = entry.second;
  }
  return object;
}

// Cookies and headers each come with a store's address, which must be the same.
Json::Value stateFrom(const Library& library) {
  TextMap cookies;
  TextMap headers;
  std::string storeUrl;
  std::string storeUrlOfHeaders;
  find<decltype(getBrowserCookies)>(library, "getBrowserCookies")(&cookies, &storeUrl);
  find<decltype(getBrowserGraphQLHeaders)>(library, "getBrowserGraphQLHeaders")(&headers,
                                                                                &storeUrlOfHeaders);
  if (storeUrl != storeUrlOfHeaders) {
    throw std::runtime_error("two addresses of one store: " + storeUrl + ", " + storeUrlOfHeaders);
  }
  Json::Value state;
  state["cookies"] = asJson(cookies);
  state["headers"] = asJson(headers);
  state["storeUrl"] = storeUrl;
  state["isLoggedIn"] = find<decltype(isLoggedIn)>(library, "isLoggedIn")();
  return state;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: browser_state PATH-OF-LIBRARY\n";
    return 2;
  }
  try {
    std::cout << stateFrom(open(arguments[1]));
  } catch (const std::exception& error) {
    std::cerr << "browser_state: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
