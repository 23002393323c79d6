// The commands that show the queue of samples, or take an item out of it.

#include <algorithm>

#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/Failure.h"
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

// Not the library's removeSample(), which does not tell whether there was anything to remove.
SampleItem takeOut(const std::string& bookId) {
  LockedSampleQueue queue;
  std::vector<SampleItem> items = queue.items();
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const SampleItem& item) { return item.bookId == bookId; });
  if (found == items.end()) {
    throw Failure(kNoSession, "no sample of the book '" + bookId + "' is in the queue",
                  "one that bookstore sample list shows");
  }
  SampleItem taken = *found;
  items.erase(found);
  queue.replace(items);
  return taken;
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
  const SampleItem item = takeOut(context.arguments.text("BOOK"));
  context.output.printResult("Removed the sample of the book " + item.bookId + " for " +
                                 item.sampleFilePath + " from the queue",
                             toJson(item));
}

}  // namespace bookstore
