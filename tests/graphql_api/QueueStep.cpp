// One step of the queue, for a test that makes its system calls fail: adds an item, removes an item
// or gets the next item. Calls of getppid() mark the begin and the end of the step.
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
