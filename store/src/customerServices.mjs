// Creates the customer services, which share one state document.
import { join } from 'node:path';

import { AccessTokens } from './accessTokens.mjs';
import { Customers } from './customers.mjs';
import { Mailbox } from './mailbox.mjs';
import { passwordHasher } from './passwords.mjs';
import { Sessions } from './sessions.mjs';
import { SignIn } from './signIn.mjs';
import { StateDocument } from './stateDocument.mjs';
import { loadTokenKey } from './stateFile.mjs';

const empty = { customers: [], sessions: {}, signInFailures: {} };

// The services in the context of operations. All times are from `clock()`, in milliseconds.
export function createCustomerServices({ stateFolder, settings, passwordCost, clock }) {
  const document = new StateDocument(join(stateFolder, 'customers.json'), empty);
  const accessTokens = new AccessTokens(loadTokenKey(stateFolder));
  const hashPassword = passwordHasher(passwordCost);
  const customers = new Customers(document, clock);
  return {
    customers,
    hashPassword,
    sessions: new Sessions({ document, accessTokens, settings, clock }),
    signIn: new SignIn({ document, customers, hashPassword, clock }),
    mailbox: new Mailbox(join(stateFolder, 'mail'), clock),
  };
}

// Makes the reader of customer access tokens (see callers.mjs).
export function customerTokenReader(sessions) {
  return (token) => {
    const customerId = sessions.customerOf(token);
    return customerId === undefined ? undefined : { kind: 'customer', customerId };
  };
}
