// Signs a customer in. The error is the same for a wrong address, a wrong password and too many
// attempts.
import { requireIntegration } from '../src/callers.mjs';
import { Category, OperationError, inputError } from '../src/platformErrors.mjs';

const refused =
  'The account sign-in was incorrect or your account is disabled temporarily. ' +
  'Please wait and try again later.';

export default async function generateCustomerToken({ email, password }, context) {
  requireIntegration(context.caller);
  if (email === '') throw inputError('Specify the "email" value.');
  if (password === '') throw inputError('Specify the "password" value.');
  const customer = await context.signIn.check(email, password);
  if (!customer) throw new OperationError(refused, Category.Authentication);
  const { accessToken, refreshToken, expiresIn } = context.sessions.open(customer.id);
  // The cache id of the response is already that of a customer.
  context.caller = { kind: 'customer', customerId: customer.id };
  return { token: accessToken, refresh_token: refreshToken, expires_in: expiresIn };
}
