// Loads and unloads the library, which this program does not link.

#include <dlfcn.h>

#include <string>

#include <gtest/gtest.h>

#include "platform/fake/FakePlatform.h"

namespace {

bool isLoaded() {
  void* const library = ::dlopen("libgraphql_api.so.1", RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) {
    ::dlclose(library);
  }
  return library != nullptr;
}

// Loads the library for one operation, and returns the user agent after it.
std::string userAgentOfALoadedLibrary() {
  void* const module = ::dlopen(OPERATION_MODULE, RTLD_NOW | RTLD_LOCAL);
  EXPECT_NE(module, nullptr) << ::dlerror();
  const auto run = reinterpret_cast<void (*)(int*, const char**)>(::dlsym(module, "runOperation"));
  fake::platform().http.answer(200, R"({"data":{"availableBookStores":[{"status":true}]}})");
  int stores = 0;
  const char* agent = "";
  run(&stores, &agent);
  EXPECT_EQ(stores, 1);
  const std::string copied = agent;
  EXPECT_TRUE(isLoaded());
  ::dlclose(module);
  return copied;
}

}  // namespace

TEST(ReloadTest, TheLibraryIsUnloadedAfterAnOperationAndAsksForTheIdentityAgain) {
  fake::reset();
  EXPECT_EQ(userAgentOfALoadedLibrary(), "Orvane Reader/417(screen 1200x1600; FW 3.2.105)");
  EXPECT_FALSE(isLoaded());
  fake::platform().device.softwareVersion = "4.0.1";
  EXPECT_EQ(userAgentOfALoadedLibrary(), "Orvane Reader/417(screen 1200x1600; FW 4.0.1)");
  EXPECT_FALSE(isLoaded());
}
