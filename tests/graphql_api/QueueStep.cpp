// One step of the queue, for a test that lets its system calls fail: it adds an item, removes one
// or takes the next one. The call of getppid() marks where the step begins, and where it ends.
//
// Usage: QueueStep add|remove|next

#include <unistd.h>

#include <string>

#include "graphql_api/GraphQLSampleQueue.h"

int main(int argc, char** argv) {
  const std::string step = argc == 2 ? argv[1] : "";
  graphql::GraphQLSampleQueue queue;
  ::getppid();
  if (step == "add") {
    queue.addSample("new", "/new");
  } else if (step == "remove") {
    queue.removeSample("b1");
  } else if (step == "next") {
    queue.getNextSample();
  } else {
    return 2;
  }
  ::getppid();
  return 0;
}
