#ifndef FUZZ_REQUIRE_H_
#define FUZZ_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

// Ends the process, which the fuzzer reports with the input, when a promise does not hold.
#define FUZZ_REQUIRE(condition)                                                    \
  do {                                                                             \
    if (!(condition)) {                                                            \
      std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                \
    }                                                                              \
  } while (false)

#endif  // FUZZ_REQUIRE_H_
