// Checks e-mail and password, and refuses an address for a while after too many failures. Attempts
// for one address are checked one after the other, so that many at once do not slip past the count.
import { createHash, randomUUID } from 'node:crypto';

import { emailKey } from './emailAddress.mjs';
import { isPassword } from './passwords.mjs';
import { Turns } from './turns.mjs';

const maximumFailures = 6;
const lockMilliseconds = 1800 * 1000;

// Of a fixed length and unreadable, whatever a client sent as address.
const failureKey = (email) => createHash('sha256').update(emailKey(email)).digest('base64url');

export class SignIn {
  #document;
  #customers;
  #clock;
  #turns = new Turns();
  #nobodysHash;

  constructor({ document, customers, hashPassword, clock }) {
    this.#document = document;
    this.#customers = customers;
    this.#clock = clock;
    this.#nobodysHash = hashPassword(randomUUID());
  }

  // The customer, or undefined for a wrong address, a wrong password and a locked address alike.
  check(email, password) {
    const key = failureKey(email);
    return this.#turns.take(key, async () => {
      if (this.#failures(key) >= maximumFailures) return undefined;
      const customer = this.#customers.findByEmail(email);
      // An unknown address takes as long as a known one, and has a password that nobody knows.
      const kept = customer?.passwordHash ?? (await this.#nobodysHash);
      const isRight = await isPassword(password, kept);
      this.#note(key, isRight ? 0 : this.#failures(key) + 1);
      return isRight ? customer : undefined;
    });
  }

  #isRecent = ({ at }) => this.#clock() < at + lockMilliseconds;

  #failures(key) {
    const entry = this.#document.value.signInFailures[key];
    return entry && this.#isRecent(entry) ? entry.count : 0;
  }

  #note(key, count) {
    const { signInFailures } = this.#document.value;
    if (count === 0 && !signInFailures[key]) return;
    const others = Object.entries(signInFailures).filter(
      ([other, entry]) => other !== key && this.#isRecent(entry),
    );
    const mine = count > 0 ? [[key, { count, at: this.#clock() }]] : [];
    this.#document.update(() => ({ signInFailures: Object.fromEntries([...others, ...mine]) }));
  }
}
