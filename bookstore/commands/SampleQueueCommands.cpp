#include "bookstore/commands/SampleQueueCommands.h"

#include <json/json.h>

#include "bookstore/commands/SampleQueue.h"
#include "bookstore/terminal/Table.h"

namespace bookstore {

namespace {

void printForPrograms(Output& output, const std::vector<SampleItem>& items) {
  Json::Value document;
  document["samples"] = Json::arrayValue;
  for (const SampleItem& item : items) {
    document["samples"].append(toJson(item));
  }
  output.printJson(document);
}

void printForPeople(Output& output, const std::vector<SampleItem>& items) {
  if (items.empty()) {
    output.print("The queue is empty\n");
    return;
  }
  Table table({"BOOK", "FILE"});
  for (const SampleItem& item : items) {
    table.addRow({item.bookId, item.sampleFilePath});
  }
  output.print(table);
}

}  // namespace

void runSampleList(Context& context) {
  const std::vector<SampleItem> items = queuedSamples();
  if (context.output.isJson()) {
    printForPrograms(context.output, items);
  } else {
    printForPeople(context.output, items);
  }
}

void runSampleNext(Context& context) {
  const SampleItem item = oldestSample();
  if (context.output.isJson()) {
    context.output.printJson(toJson(item));
  } else {
    printForPeople(context.output, {item});
  }
}

void runSampleRemove(Context& context) {
  const SampleItem item = removeSample(context.arguments.text("BOOK"));
  context.output.printResult("Removed the sample of the book " + item.bookId + " for " +
                                 item.sampleFilePath + " from the queue",
                             toJson(item));
}

}  // namespace bookstore
