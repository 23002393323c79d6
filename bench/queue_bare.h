#ifndef BENCH_QUEUE_BARE_H_
#define BENCH_QUEUE_BARE_H_

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Opens, locks, reads, rewrites and closes the queue file at `path`, with `size` bytes more at its
// end; knows nothing of items. As the library, it opens the file by its path for each of lock, read
// and write. Returns 0, or -1 when something failed.
int addBare(const char* path, const char* bytes, size_t size);

#ifdef __cplusplus
}
#endif

#endif  // BENCH_QUEUE_BARE_H_
