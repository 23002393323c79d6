#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/Completion.h"

namespace bookstore {

void runCompletion(Context& context) {
  const std::string shell = context.arguments.text("SHELL");
  const std::string script = shell == "bash"  ? bashCompletion(commands())
                             : shell == "zsh" ? zshCompletion(commands())
                                              : fishCompletion(commands());
  if (!context.output.isJson()) {
    context.output.print(script);
    return;
  }
  Json::Value document;
  document["shell"] = shell;
  document["script"] = script;
  context.output.printJson(document);
}

}  // namespace bookstore
