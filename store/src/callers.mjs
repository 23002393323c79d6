// Who sends a request. Token readers are functions `(token) => caller`: a reader that does not know
// the token returns undefined, one that knows it as expired or revoked throws a Refusal. More
// readers (customer tokens) are added where the service is put together.
import { Category, OperationError, Reason, Refusal, inputError } from './platformErrors.mjs';

export const guest = Object.freeze({ kind: 'guest' });

// The token of an Authorization header, or null for every header that the platform ignores: the
// value must be exactly two pieces around one blank, the first of them "bearer" in any case.
export function bearerToken(authorization) {
  const pieces = (authorization ?? '').split(' ');
  if (pieces.length !== 2 || pieces[0].toLowerCase() !== 'bearer') return null;
  return pieces[1];
}

export function integrationTokenReader(seed) {
  const tokens = new Set(seed.stores.map((store) => store.integrationToken));
  return (token) => (tokens.has(token) ? { kind: 'integration' } : undefined);
}

async function readToken(token, tokenReaders) {
  for (const reader of tokenReaders) {
    const caller = await reader(token);
    if (caller) return caller;
  }
  throw new Refusal(
    Reason.Token,
    'Composite reader could not read a token',
    Category.Authentication,
  );
}

// The caller of a request. A token that cannot be read is a Refusal on a line that refuses such
// tokens and makes a guest on the other.
export async function identifyCaller(authorization, tokenReaders, line) {
  const token = bearerToken(authorization);
  if (token === null) return guest;
  try {
    return await readToken(token, tokenReaders);
  } catch (error) {
    const ignored = error instanceof Refusal && !line.refusesUnreadableTokens;
    if (ignored) return guest;
    throw error;
  }
}

// Throws for everybody but a signed-in customer.
export function requireCustomer(caller) {
  if (caller.kind === 'customer') return;
  throw new OperationError("The current customer isn't authorized.", Category.Authorization);
}

// Throws for a caller who would have to prove to be human: integrations need not.
export function requireIntegration(caller) {
  if (caller.kind === 'integration') return;
  throw inputError('ReCaptcha validation failed, please try again');
}
