// What survives a restart of the service, and the content of its files.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync, rmSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { after, afterEach, before, test } from 'node:test';

import { CustomerActions, failure } from './customerActions.mjs';
import { startTestService } from './support.mjs';

let store;
let reader;
before(async () => {
  store = await startTestService();
  reader = new CustomerActions(store);
});
after(() => store.stop());
afterEach(() => store.reset());

const inState = (...names) => join(store.state.path, ...names);

test('accounts and both tokens survive', async () => {
  const { person, accessToken, refreshToken } = await reader.signedIn();
  await store.restart();
  assert.equal((await reader.profile(accessToken)).json().data.customer.email, person.email);
  assert.ok((await reader.refresh(refreshToken)).json().data.refreshTokens.access_token);
  assert.ok((await reader.tokens(person)).accessToken);
});

test('a used refresh token stays used, and an ended session stays ended', async () => {
  const { refreshToken } = await reader.signedIn();
  const second = (await reader.refresh(refreshToken)).json().data.refreshTokens;
  await store.restart();
  assert.equal((await reader.refresh(refreshToken)).status, 401);
  await store.restart();
  assert.equal((await reader.refresh(second.refresh_token)).status, 401);
  const { message } = failure(await reader.profile(second.access_token));
  assert.equal(message, 'User token has been revoked');
});

test('a locked address stays locked', async () => {
  const person = await reader.registered();
  for (let count = 0; count < 6; count += 1) await reader.signIn({ ...person, password: 'no' });
  await store.restart();
  assert.equal((await reader.signIn(person)).status, 401);
});

test('emails continue with the next number', async () => {
  const { email } = await reader.registered();
  await reader.ask('requestPasswordResetEmail', { email });
  await store.restart();
  await reader.ask('requestPasswordResetEmail', { email });
  assert.deepEqual(readdirSync(inState('mail')).sort(), [
    '0001-password-reset.eml',
    '0002-password-reset.eml',
  ]);
});

test('no file contains a password or a token, and only the owner can read the files', async () => {
  const { person, accessToken, refreshToken } = await reader.signedIn();
  await reader.signIn({ ...person, password: 'Wrong-Moonlight' });
  const refreshed = (await reader.refresh(refreshToken)).json().data.refreshTokens;
  const secrets = [
    person.password,
    'Wrong-Moonlight',
    accessToken,
    refreshToken,
    refreshToken.slice(0, 22),
    refreshed.access_token,
    refreshed.refresh_token,
    refreshed.refresh_token.slice(22),
  ];
  const files = readdirSync(store.state.path).filter((name) => statSync(inState(name)).isFile());
  assert.ok(files.includes('customers.json'));
  for (const name of files) {
    const text = readFileSync(inState(name), 'utf8');
    for (const secret of secrets) assert.equal(text.includes(secret), false, name);
  }
  for (const name of ['customers.json', 'token-key']) {
    assert.equal(statSync(inState(name)).mode & 0o777, 0o600);
  }
  assert.equal(statSync(inState('mail')).mode & 0o777, 0o700);
});

test('a new signing key makes every access token unknown', async () => {
  const { accessToken, refreshToken } = await reader.signedIn();
  rmSync(inState('token-key'));
  await store.restart();
  const { message } = failure(await reader.profile(accessToken));
  assert.equal(message, 'Composite reader could not read a token');
  assert.equal((await reader.refresh(refreshToken)).status, 200);
});
