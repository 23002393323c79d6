#include <json/json.h>

#include "bookstore/Commands.h"
#include "bookstore/commands/Session.h"

namespace bookstore {

void runSignOut(Context& context) {
  const SessionLock lock(context);
  context.storage->reload();  // another process may have changed it until the lock was free
  const bool wasSignedIn = context.storage->isLoggedIn();
  context.storage->logoutOnlyFromStore();
  requireTokensSaved("the tokens were forgotten", "", "");

  Json::Value document;
  document["wasSignedIn"] = wasSignedIn;
  context.output.printResult(wasSignedIn ? "Signed out" : "Nobody was signed in", document);
}

}  // namespace bookstore
