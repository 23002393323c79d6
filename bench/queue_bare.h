#ifndef BENCH_QUEUE_BARE_H_
#define BENCH_QUEUE_BARE_H_

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Opens, locks, reads, rewrites and closes the queue file at `path`, with `size` more bytes at the
// end. Does not parse the items. Like the library, it opens the file by path to lock, to read and
// to write it. Returns 0, or -1 on failure.
int addBare(const char* path, const char* bytes, size_t size);

#ifdef __cplusplus
}
#endif

#endif  // BENCH_QUEUE_BARE_H_
