import assert from 'node:assert/strict';
import { after, afterEach, before, beforeEach, describe, test } from 'node:test';

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

const refreshed = async (refreshToken) =>
  (await reader.refresh(refreshToken)).json().data.refreshTokens;

// On the new line a token that is no longer good is refused before anything runs; on the old line
// its bearer is a guest.
async function assertNoLongerGood(accessToken, message, line) {
  const answer = await reader.profile(accessToken);
  const expected = {
    old: {
      status: 200,
      message: "The current customer isn't authorized.",
      category: 'graphql-authorization',
      data: { customer: null },
    },
    new: { status: 401, message, category: 'graphql-authentication', data: undefined },
  };
  assert.deepEqual(failure(answer), expected[line]);
}

for (const line of ['old', 'new']) {
  const refusedStatus = { old: 200, new: 401 }[line];
  const assertRefused = (answer) =>
    assert.deepEqual(failure(answer), {
      status: refusedStatus,
      message: 'The refresh token is invalid or has expired. Please sign in again.',
      category: 'graphql-authentication',
      data: { refreshTokens: null },
    });

  describe(`on the ${line} line`, () => {
    beforeEach(() => store.useLine(line));

    test('a refresh gives new tokens of the same customer', async () => {
      const { person, accessToken, refreshToken } = await reader.signedIn();
      const tokens = await refreshed(refreshToken);
      assert.equal(tokens.expires_in, 3600);
      assert.notEqual(tokens.access_token, accessToken);
      assert.notEqual(tokens.refresh_token, refreshToken);
      const { data } = (await reader.profile(tokens.access_token)).json();
      assert.equal(data.customer.email, person.email);
    });

    test('refresh tokens follow each other', async () => {
      let { refreshToken } = await reader.signedIn();
      for (let count = 0; count < 3; count += 1) {
        refreshToken = (await refreshed(refreshToken)).refresh_token;
      }
      assert.ok(refreshToken);
    });

    test('a used refresh token is refused and ends its session for everybody', async () => {
      const { refreshToken } = await reader.signedIn();
      const newer = await refreshed(refreshToken);
      assertRefused(await reader.refresh(refreshToken));
      assertRefused(await reader.refresh(newer.refresh_token));
      await assertNoLongerGood(newer.access_token, 'User token has been revoked', line);
    });

    test('other sessions of the customer continue', async () => {
      const { person, refreshToken } = await reader.signedIn();
      const other = await reader.tokens(person);
      await refreshed(refreshToken);
      assertRefused(await reader.refresh(refreshToken));
      assert.ok((await refreshed(other.refreshToken)).access_token);
    });

    test('a text that is not a refresh token is refused', async () => {
      const { accessToken, refreshToken } = await reader.signedIn();
      for (const token of ['x', 'x'.repeat(65), accessToken, `${refreshToken}x`, '😀"\\\n']) {
        assertRefused(await reader.refresh(token));
      }
      assert.ok((await refreshed(refreshToken)).access_token);
    });

    test('an empty refresh token is refused', async () => {
      assert.deepEqual(failure(await reader.refresh('')), {
        status: 200,
        message: 'Specify the "refresh_token" value.',
        category: 'graphql-input',
        data: { refreshTokens: null },
      });
    });

    test('a refresh without the integration token uses nothing up', async () => {
      const { refreshToken } = await reader.signedIn();
      const { message } = failure(await reader.refresh(refreshToken, {}));
      assert.equal(message, 'ReCaptcha validation failed, please try again');
      assert.ok((await refreshed(refreshToken)).access_token);
    });

    test("an access token expires on the server's clock", async () => {
      await store.control('PATCH', '/settings', { tokenLifetimeSeconds: 30 });
      const { accessToken, refreshToken } = await reader.signedIn();
      await reader.passes(20);
      assert.ok((await reader.profile(accessToken)).json().data.customer);
      await reader.passes(31);
      await assertNoLongerGood(accessToken, 'Consumer key has expired', line);
      const tokens = await refreshed(refreshToken);
      assert.equal(tokens.expires_in, 30);
      assert.ok((await reader.profile(tokens.access_token)).json().data.customer);
    });

    test('a refresh token expires too, counted from the last refresh', async () => {
      await store.control('PATCH', '/settings', { refreshTokenLifetimeSeconds: 100 });
      const { refreshToken } = await reader.signedIn();
      await reader.passes(60);
      const { refresh_token: second } = await refreshed(refreshToken);
      await reader.passes(120);
      const { refresh_token: third } = await refreshed(second);
      await reader.passes(221);
      assertRefused(await reader.refresh(third));
    });
  });
}

test('after a refresh, the cache id on the old line is that of a customer', async () => {
  await store.useLine('old');
  const { accessToken, refreshToken } = await reader.signedIn();
  const [profile, answer] = [await reader.profile(accessToken), await reader.refresh(refreshToken)];
  assert.match(answer.headers['x-magento-cache-id'], /^[0-9a-f]{64}$/);
  assert.equal(answer.headers['x-magento-cache-id'], profile.headers['x-magento-cache-id']);
});

test('an expired token is refused for a public operation too', async () => {
  const { accessToken } = await reader.signedIn();
  await reader.passes(3601);
  const headers = { Authorization: `Bearer ${accessToken}` };
  assert.equal((await store.http1({ headers })).status, 401);
  await store.useLine('old');
  assert.equal((await store.http1({ headers })).status, 200);
});

test('an access token with another customer, lifetime or signature is unknown', async () => {
  const { accessToken } = await reader.signedIn();
  const [header, body, signature] = accessToken.split('.');
  const claims = JSON.parse(Buffer.from(body, 'base64url'));
  const encode = (value) => Buffer.from(JSON.stringify(value)).toString('base64url');
  const forged = [
    `${header}.${encode({ ...claims, uid: claims.uid + 1 })}.${signature}`,
    `${header}.${encode({ ...claims, exp: claims.exp + 1e6 })}.${signature}`,
    `${encode({ alg: 'none' })}.${body}.`,
    `${header}.${body}.${'A'.repeat(43)}`,
    `${header}.${body}`,
    `${accessToken}.`,
  ];
  for (const token of forged) {
    const { message } = failure(await reader.profile(token));
    assert.equal(message, 'Composite reader could not read a token');
  }
});
