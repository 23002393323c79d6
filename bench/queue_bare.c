#define _DEFAULT_SOURCE  // flock

#include "bench/queue_bare.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static int rewrite(const char* path, const char* added, size_t size) {
  struct stat status;
  const int in = open(path, O_RDONLY);
  if (in == -1 || fstat(in, &status) != 0) {
    return -1;
  }
  const size_t old = (size_t)status.st_size;
  char* bytes = malloc(old + size);
  int failed = bytes == NULL || read(in, bytes, old) != (ssize_t)old;
  close(in);
  if (!failed) {
    memcpy(bytes + old, added, size);
    const int out = open(path, O_WRONLY | O_TRUNC);
    failed = out == -1 || write(out, bytes, old + size) != (ssize_t)(old + size);
    close(out);
  }
  free(bytes);
  return failed ? -1 : 0;
}

int addBare(const char* path, const char* bytes, size_t size) {
  const int lock = open(path, O_RDWR | O_CREAT, 0777);
  const int failed = lock == -1 || flock(lock, LOCK_EX) != 0 || rewrite(path, bytes, size) != 0;
  close(lock);
  return failed ? -1 : 0;
}
