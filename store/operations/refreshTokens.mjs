// Exchanges a refresh token for a new pair of tokens. A refresh token can be used once.
import { requireIntegration } from '../src/callers.mjs';
import { Category, OperationError, inputError } from '../src/platformErrors.mjs';

export default function refreshTokens({ refresh_token: token }, context) {
  requireIntegration(context.caller);
  if (token === '') throw inputError('Specify the "refresh_token" value.');
  const refreshed = context.sessions.refresh(token);
  if (!refreshed) {
    throw new OperationError(
      'The refresh token is invalid or has expired. Please sign in again.',
      Category.Authentication,
    );
  }
  const { customerId, tokens } = refreshed;
  context.caller = { kind: 'customer', customerId };
  return {
    access_token: tokens.accessToken,
    refresh_token: tokens.refreshToken,
    expires_in: tokens.expiresIn,
  };
}
