// The commands about a customer's account at a store. They need no session.

#ifndef BOOKSTORE_COMMANDS_ACCOUNTCOMMANDS_H_
#define BOOKSTORE_COMMANDS_ACCOUNTCOMMANDS_H_

#include "bookstore/Command.h"

namespace bookstore {

// bookstore register: registers a customer.
void runRegister(Context& context);

// bookstore email-available: prints whether an address can be registered.
void runEmailAvailable(Context& context);

// bookstore reset-password: has a store mail a link to a customer.
void runResetPassword(Context& context);

}  // namespace bookstore

#endif  // BOOKSTORE_COMMANDS_ACCOUNTCOMMANDS_H_
