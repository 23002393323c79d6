// Limits of sessions, with a simulated clock: how many are kept, and for how long.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { createCustomerServices } from '../src/customerServices.mjs';
import { defaultSettings } from '../src/settings.mjs';
import { temporaryFolder } from './support.mjs';

// `keptCount()` counts the sessions on disk; `time.now` is the clock.
function sessionsAlone(t) {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const time = { now: 0 };
  const { sessions } = createCustomerServices({
    stateFolder: folder.path,
    settings: defaultSettings,
    passwordCost: 2,
    clock: () => time.now,
  });
  const read = () => JSON.parse(readFileSync(join(folder.path, 'customers.json'), 'utf8'));
  return { sessions, time, keptCount: () => Object.keys(read().sessions).length };
}

test('the oldest session is dropped when a customer has more than a hundred', (t) => {
  const { sessions, keptCount } = sessionsAlone(t);
  const other = sessions.open(2);
  const [first, second] = [sessions.open(1), sessions.open(1)];
  for (let count = 0; count < 99; count += 1) sessions.open(1);
  assert.equal(keptCount(), 101);
  assert.throws(() => sessions.customerOf(first.accessToken), /User token has been revoked/);
  assert.equal(sessions.refresh(first.refreshToken), undefined);
  assert.equal(sessions.customerOf(second.accessToken), 1);
  assert.equal(sessions.customerOf(other.accessToken), 2);
});

test('a session whose refresh token has expired is dropped', (t) => {
  const { sessions, time, keptCount } = sessionsAlone(t);
  sessions.open(1);
  time.now = 31 * 24 * 3600 * 1000;
  sessions.open(2);
  assert.equal(keptCount(), 1);
});

test('tokens of the same instant differ', (t) => {
  const { sessions } = sessionsAlone(t);
  const first = sessions.open(1);
  const { tokens: second } = sessions.refresh(first.refreshToken);
  assert.notEqual(second.accessToken, first.accessToken);
});
