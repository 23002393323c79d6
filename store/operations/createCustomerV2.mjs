// Registers a customer, without signing in. Without a password the account exists but cannot sign
// in, as on the platform.
import { requireIntegration } from '../src/callers.mjs';
import { asCustomerType } from '../src/customerType.mjs';
import { isEmailAddress } from '../src/emailAddress.mjs';
import { checkNewPassword } from '../src/passwordRules.mjs';
import { inputError } from '../src/platformErrors.mjs';

const required = { email: 'Email', firstname: 'First Name', lastname: 'Last Name' };

function checkInput(input, line) {
  for (const [name, label] of Object.entries(required)) {
    if (input[name].trim() === '') throw inputError(line.missingValueMessage(label));
  }
  const { email, password } = input;
  if (!isEmailAddress(email)) throw inputError(`"${email}" is not a valid email address.`);
  if (hasPassword(input)) checkNewPassword(password, email);
}

function hasPassword({ password }) {
  return password !== undefined && password !== null;
}

function asFields(input) {
  const { email, firstname, lastname, middlename, prefix, suffix, taxvat, gender } = input;
  return {
    email,
    firstname,
    lastname,
    middlename,
    prefix,
    suffix,
    taxvat,
    gender,
    dateOfBirth: input.date_of_birth ?? input.dob,
    isSubscribed: input.is_subscribed ?? false,
    allowsShoppingAssistance: input.allow_remote_shopping_assistance ?? false,
  };
}

export default async function createCustomerV2({ input }, context) {
  const { customers, hashPassword } = context;
  requireIntegration(context.caller);
  checkInput(input, context.line);
  const passwordHash = hasPassword(input) ? await hashPassword(input.password) : null;
  const customer = customers.add({ ...asFields(input), passwordHash });
  if (!customer) {
    throw inputError(
      'A customer with the same email address already exists in an associated website.',
    );
  }
  return { customer: asCustomerType(customer) };
}
