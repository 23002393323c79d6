// The check behind a sign-in, with guesses that arrive at the same time.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { createCustomerServices } from '../src/customerServices.mjs';
import { defaultSettings } from '../src/settings.mjs';
import { temporaryFolder } from './support.mjs';

test('of guesses that arrive at once none slips past the count of failures', async (t) => {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const { customers, hashPassword, signIn } = createCustomerServices({
    stateFolder: folder.path,
    settings: defaultSettings,
    passwordCost: 2,
    clock: () => 0,
  });
  const email = 'ada@example.org';
  customers.add({ email, passwordHash: await hashPassword('right') });
  const guesses = ['a', 'b', 'c', 'd', 'e', 'f', 'right'];
  const outcomes = await Promise.all(guesses.map((guess) => signIn.check(email, guess)));
  assert.deepEqual(outcomes, Array(7).fill(undefined));
});
