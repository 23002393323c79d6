// Checks email address and password, and locks an address for a while after too many failures.
// Attempts for the same address are checked one after the other, so that simultaneous attempts are
// all counted.
import { createHash, randomUUID } from 'node:crypto';

import { emailKey } from './emailAddress.mjs';
import { isPassword } from './passwords.mjs';
import { Turns } from './turns.mjs';

const maximumFailures = 6;
const lockMilliseconds = 1800 * 1000;

// A hash: it has a fixed length and does not reveal the address.
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

  // The customer, or undefined for a wrong address, a wrong password or a locked address.
  check(email, password) {
    const key = failureKey(email);
    return this.#turns.take(key, async () => {
      if (this.#failures(key) >= maximumFailures) return undefined;
      const customer = this.#customers.findByEmail(email);
      // An unknown address is checked against a random password, so that the time is the same.
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
