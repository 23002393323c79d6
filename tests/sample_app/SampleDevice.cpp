// A device with the queue of samples, over whichever implementation of the platform it is given,
// for a test that prepares one and looks at it:
//
// Usage: SampleDevice sign-in EMAIL | sign-out | add BOOK PATH | list
//
// sign-in registers the customer first. Ends with 1 when the store refuses.

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/CfgWrapper.h>
#include <ov_sdk.h>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

// The library takes no session from the file of a device without its own token.
void registerDevice() {
  const std::string key = orvane::utilities::BookStoreVersionProxy::configKeySacAccessToken();
  orvane::utilities::CfgWrapper session("/mnt/ext1/system/config/bookstore.cfg",
                                        orvane::utilities::CfgWrapper::Write);
  if (!session.readIfExists<orvane::utilities::CfgSecret>(key)) {
    WriteSecret(session.handle, key.c_str(), "registered");
    session.saveAndClose();
  }
}

bool signIn(const std::string& email) {
  registerDevice();
  const std::string password = "Secret Pass 1";
  graphql::GraphQLApi api(std::make_shared<graphql::GraphQLStorageApi>());
  const auto stores = api.getStores();
  const auto store = std::find_if(stores.begin(), stores.end(),
                                  [](const auto& found) { return found.storeCode == "de_de"; });
  return store != stores.end() &&
         api.createAccount(*store, email, password, "Ada", "Byron", false).error == 0 &&
         !api.auth(*store, email, password).accessToken.empty();
}

void list() {
  std::vector<graphql::GraphQLSampleQueue::SampleItem> items;
  graphql::GraphQLSampleQueue().deserializeSampleItems(&items);
  for (const auto& item : items) {
    std::cout << item.bookId << "@" << item.sampleFilePath << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() == 2 && words[0] == "sign-in") {
    return signIn(words[1]) ? 0 : 1;
  }
  if (words == std::vector<std::string>{"sign-out"}) {
    graphql::GraphQLStorageApi().logoutOnlyFromStore();
  } else if (words.size() == 3 && words[0] == "add") {
    graphql::GraphQLSampleQueue().addSample(words[1], words[2]);
  } else if (words == std::vector<std::string>{"list"}) {
    list();
  } else {
    return 2;
  }
  return 0;
}
