// Identifies who sends a request. Token readers are functions `(token) => caller`. A reader returns
// undefined for an unknown token, and throws a Refusal for an expired or revoked one. service.mjs
// adds more readers (customer tokens).
import { Category, OperationError, Reason, Refusal, inputError } from './platformErrors.mjs';

export const guest = Object.freeze({ kind: 'guest' });

// The token of an Authorization header, or null for a header that the platform ignores. The value
// must be two words with one blank between them, the first of them "bearer" in any letter case.
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

// The caller of a request. For an unreadable token, one line throws a Refusal; on the other line
// the caller is a guest.
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

// Throws unless the caller is a signed-in customer.
export function requireCustomer(caller) {
  if (caller.kind === 'customer') return;
  throw new OperationError("The current customer isn't authorized.", Category.Authorization);
}

// Throws for a caller who would have to solve a captcha. Integrations need not.
export function requireIntegration(caller) {
  if (caller.kind === 'integration') return;
  throw inputError('ReCaptcha validation failed, please try again');
}
