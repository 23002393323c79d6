// The layouts of the records and classes that programs are compiled against: which member stands
// where, and how large each is. Building is the test.

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "graphql_api/GraphQLApi.h"
#include "graphql_api/GraphQLSampleQueue.h"
#include "graphql_api/GraphQLStorageApi.h"

namespace {

using Api = graphql::GraphQLApi;
using Queue = graphql::GraphQLSampleQueue;
using Storage = graphql::GraphQLStorageApi;

constexpr std::size_t kText = sizeof(std::string);
constexpr std::size_t kWord = sizeof(void*);

constexpr std::size_t roundedUp(std::size_t size) {
  return (size + kWord - 1) / kWord * kWord;
}

// The size on devices of 64 and of 32 bits.
constexpr std::size_t bytes(std::size_t on64Bits, std::size_t on32Bits) {
  return kWord == 8 ? on64Bits : on32Bits;
}

static_assert(offsetof(Storage::StoreInfo, storeName) == 0 * kText, "");
static_assert(offsetof(Storage::StoreInfo, url) == 1 * kText, "");
static_assert(offsetof(Storage::StoreInfo, apiUrl) == 2 * kText, "");
static_assert(offsetof(Storage::StoreInfo, language) == 3 * kText, "");
static_assert(offsetof(Storage::StoreInfo, langCode) == 4 * kText, "");
static_assert(offsetof(Storage::StoreInfo, storeCode) == 5 * kText, "");
static_assert(offsetof(Storage::StoreInfo, integrationToken) == 6 * kText, "");
static_assert(offsetof(Storage::StoreInfo, providerID) == 7 * kText, "");
static_assert(offsetof(Storage::StoreInfo, currency) == 8 * kText, "");
static_assert(offsetof(Storage::StoreInfo, status) == 9 * kText, "");
static_assert(sizeof(Storage::StoreInfo) == roundedUp(9 * kText + sizeof(bool)), "");
static_assert(sizeof(Storage::StoreInfo) == bytes(296, 220), "");

static_assert(offsetof(Storage::ErrorInfo, error) == 0, "");
static_assert(offsetof(Storage::ErrorInfo, code) == sizeof(int), "");
static_assert(offsetof(Storage::ErrorInfo, message) == 2 * sizeof(int), "");
static_assert(sizeof(Storage::ErrorInfo) == bytes(40, 32), "");

static_assert(offsetof(Storage::LoginInfo, accessToken) == 0 * kText, "");
static_assert(offsetof(Storage::LoginInfo, refreshToken) == 1 * kText, "");
static_assert(offsetof(Storage::LoginInfo, expiresIn) == 2 * kText, "");
static_assert(offsetof(Storage::LoginInfo, errorInfo) == 3 * kText, "");
static_assert(sizeof(Storage::LoginInfo) == bytes(136, 104), "");

static_assert(offsetof(Storage::UserInfo, email) == 0 * kText, "");
static_assert(offsetof(Storage::UserInfo, firstname) == 1 * kText, "");
static_assert(offsetof(Storage::UserInfo, lastname) == 2 * kText, "");
static_assert(sizeof(Storage::UserInfo) == bytes(96, 72), "");

static_assert(offsetof(Api::SampleMetadata, apiUrl) == 0 * kText, "");
static_assert(offsetof(Api::SampleMetadata, uid) == 1 * kText, "");
static_assert(offsetof(Api::SampleMetadata, name) == 2 * kText, "");
static_assert(offsetof(Api::SampleMetadata, author) == 3 * kText, "");
static_assert(offsetof(Api::SampleMetadata, price) == 4 * kText, "");
static_assert(offsetof(Api::SampleMetadata, oldPrice) == 5 * kText, "");
static_assert(offsetof(Api::SampleMetadata, thumbnailUrl) == 6 * kText, "");
static_assert(offsetof(Api::SampleMetadata, error) == 7 * kText, "");
static_assert(sizeof(Api::SampleMetadata) == roundedUp(7 * kText + sizeof(int)), "");
static_assert(sizeof(Api::SampleMetadata) == bytes(232, 172), "");

static_assert(offsetof(Queue::SampleItem, bookId) == 0 * kText, "");
static_assert(offsetof(Queue::SampleItem, sampleFilePath) == 1 * kText, "");
static_assert(sizeof(Queue::SampleItem) == bytes(64, 48), "");

// Of the classes the members are private; their sizes tell when one comes or goes.
static_assert(sizeof(Storage) ==
                  sizeof(Storage::StoreInfoList) + 7 * kText + roundedUp(sizeof(std::mutex)),
              "the store list, three tokens, three parts of an identity, the cache id, the lock");
static_assert(sizeof(Api) == sizeof(std::shared_ptr<Storage>) + sizeof(Api::ErrorCallback), "");
static_assert(sizeof(Api) == bytes(48, 24), "");
static_assert(sizeof(Queue) == sizeof(int), "the descriptor");

// Numbers that programs were compiled with.
static_assert(Storage::None == 0 && Storage::Integration == 1 && Storage::Customer == 2 &&
                  Storage::CustomerRefresh == 3,
              "");
static_assert(Api::Ok == 0 && Api::BadResponse == 3 && Api::NetworkError == 5, "");

}  // namespace
