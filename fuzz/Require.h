#ifndef FUZZ_REQUIRE_H_
#define FUZZ_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

// Ends the process when a condition is false; the fuzzer then reports the input.
#define FUZZ_REQUIRE(condition)                                                          \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                      \
    }                                                                                    \
  } while (false)

#endif  // FUZZ_REQUIRE_H_
