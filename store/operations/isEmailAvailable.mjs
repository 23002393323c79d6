// Whether an address can be registered.
import { isEmailAddress } from '../src/emailAddress.mjs';
import { inputError } from '../src/platformErrors.mjs';

export default function isEmailAvailable({ email }, { customers, line, settings }) {
  if (email === '') throw inputError('Email must be specified');
  if (!isEmailAddress(email)) throw inputError('Email is invalid');
  const isHidden = line.mayHideEmailAvailability && !settings.guestCheckoutLogin;
  return { is_email_available: isHidden || !customers.findByEmail(email) };
}
