// The password check of a sign-in: its count of failures, and simultaneous checks.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { createCustomerServices } from '../src/customerServices.mjs';
import { defaultSettings } from '../src/settings.mjs';
import { temporaryFolder } from './support.mjs';

function signInAlone(t) {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const time = { now: 0 };
  const services = createCustomerServices({
    stateFolder: folder.path,
    settings: defaultSettings,
    passwordCost: 2,
    clock: () => time.now,
  });
  const read = () => JSON.parse(readFileSync(join(folder.path, 'customers.json'), 'utf8'));
  return { ...services, time, countedAddresses: () => Object.keys(read().signInFailures).length };
}

test('simultaneous guesses are all counted as failures', async (t) => {
  const { customers, hashPassword, signIn } = signInAlone(t);
  const email = 'ada@example.org';
  customers.add({ email, passwordHash: await hashPassword('right') });
  const guesses = ['a', 'b', 'c', 'd', 'e', 'f', 'right'];
  const outcomes = await Promise.all(guesses.map((guess) => signIn.check(email, guess)));
  assert.deepEqual(outcomes, Array(7).fill(undefined));
});

test('an unexpected error in a check does not block the next one', async (t) => {
  const { customers, hashPassword, signIn } = signInAlone(t);
  const email = 'ada@example.org';
  const customer = customers.add({ email, passwordHash: await hashPassword('right') });
  const [broken, good] = await Promise.allSettled([
    signIn.check(email, undefined),
    signIn.check(email, 'right'),
  ]);
  assert.equal(broken.status, 'rejected');
  assert.deepEqual(good.value, customer);
});

test('failures of half an hour ago are forgotten', async (t) => {
  const { signIn, time, countedAddresses } = signInAlone(t);
  await signIn.check('a@example.org', 'x');
  time.now = 1800 * 1000 - 1;
  await signIn.check('b@example.org', 'x');
  assert.equal(countedAddresses(), 2);
  time.now += 1;
  await signIn.check('c@example.org', 'x');
  assert.equal(countedAddresses(), 2);
});
