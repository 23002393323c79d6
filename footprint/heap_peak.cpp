// Prints the largest heap size, in bytes, during one store discovery, including the state object,
// the parsed response and the result. The resident size of a process would count whole pages and,
// in an emulator, the emulator; the sizes from malloc are the same on every machine. The
// environment variable FOOTPRINT_ANSWER is the response.

#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <memory>

#include "graphql_api/GraphQLApi.h"

namespace {

// The program has one thread.
std::size_t held = 0;
std::size_t mostHeld = 0;

void* counted(void* block) {
  held += malloc_usable_size(block);
  mostHeld = held > mostHeld ? held : mostHeld;
  return block;
}

void discount(void* block) {
  held -= malloc_usable_size(block);
}

}  // namespace

// The C library's functions under their internal names. The functions below replace them in the
// whole process.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
  return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
  discount(block);
  return counted(__libc_realloc(block, size));
}

void free(void* block) noexcept {
  discount(block);
  __libc_free(block);
}
}

int main() {
  const std::size_t before = held;
  mostHeld = held;
  {
    const auto storage = std::make_shared<graphql::GraphQLStorageApi>();
    graphql::GraphQLApi api(storage);
    if (api.getStores().empty()) {
      std::fputs("heap_peak: the response was not parsed\n", stderr);
      return 1;
    }
  }
  const std::size_t peak = mostHeld - before;
  const std::size_t kept = held - before;
  std::printf("%zu\n", peak);
  // The identity of the device stays allocated; anything more would be a leak.
  return kept < 1024 ? 0 : 1;
}
