// Removes the oldest item of the queue as a worker does, for a test that kills it meanwhile. The
// call of getppid() marks where that begins.

#include <unistd.h>

#include "sample_app/WorkQueue.h"

int main() {
  sample_app::WorkQueue queue;
  ::getppid();
  return queue.recover() && queue.removeOldest(*sample_app::oldestItem()) ? 0 : 1;
}
