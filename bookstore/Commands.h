// The functions of the commands, each in a file of its own: reads the arguments of its row, prints
// its result, throws Failure when it has none.

#ifndef BOOKSTORE_COMMANDS_H_
#define BOOKSTORE_COMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

void runCompletion(Context& context);
void runCookies(Context& context);
void runEmailAvailable(Context& context);
void runHeaders(Context& context);
void runOpen(Context& context);
void runRefresh(Context& context);
void runRegister(Context& context);
void runResetPassword(Context& context);
void runSampleAdd(Context& context);
void runSampleInfo(Context& context);
void runSampleList(Context& context);
void runSampleNext(Context& context);
void runSamplePrice(Context& context);
void runSampleRemove(Context& context);
void runSampleWork(Context& context);
void runSignIn(Context& context);
void runSignOut(Context& context);
void runStatus(Context& context);
void runStores(Context& context);
void runWhoami(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_H_
