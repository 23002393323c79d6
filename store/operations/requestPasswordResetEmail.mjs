// Writes the email with the password reset link. The link is fictitious and does not work.
import { randomBytes } from 'node:crypto';

import { requireIntegration } from '../src/callers.mjs';
import { isEmailAddress } from '../src/emailAddress.mjs';
import { inputError } from '../src/platformErrors.mjs';
import { fill, textsFor } from '../src/texts.mjs';

function resetMail(customer, store) {
  const texts = textsFor(store).mail;
  const token = randomBytes(16).toString('hex');
  const values = {
    name: `${customer.firstname} ${customer.lastname}`,
    store: store.storeName || store.language,
    link: `${store.url}customer/account/createPassword/?token=${token}`,
  };
  return {
    kind: 'password-reset',
    from: `service@${new URL(store.url).hostname}`,
    to: customer.email,
    subject: fill(texts.subject, values),
    paragraphs: texts.paragraphs.map((paragraph) => fill(paragraph, values)),
  };
}

export default function requestPasswordResetEmail({ email }, context) {
  requireIntegration(context.caller);
  if (email === '') throw inputError('You must specify an email address.');
  if (!isEmailAddress(email)) throw inputError('The email address has an invalid format.');
  const customer = context.customers.findByEmail(email);
  if (!customer) throw inputError("Cannot reset the customer's password");
  context.mailbox.send(resetMail(customer, context.store));
  return true;
}
