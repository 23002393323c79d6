import assert from 'node:assert/strict';
import { after, afterEach, before, test } from 'node:test';

import { startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());
afterEach(() => store.reset());

const withToken = (token) => store.http1({ headers: { Authorization: `Bearer ${token}` } });

test('an integration token of the seed is read on both lines', async () => {
  for (const line of ['old', 'new']) {
    await store.useLine(line);
    assert.equal((await withToken('inventedintegrationtokendede0000')).status, 200);
  }
});

test('an unreadable token is refused on the new line, for a public operation too', async () => {
  const answer = await withToken('unknown');
  assert.equal(answer.status, 401);
  assert.equal(
    answer.text,
    '{"errors":[{"message":"Composite reader could not read a token",' +
      '"extensions":{"category":"graphql-authentication"}}]}',
  );
});

test('a caller with an unreadable token is a guest on the old line', async () => {
  await store.useLine('old');
  const answer = await withToken('unknown');
  assert.equal(answer.status, 200);
  assert.ok(answer.json().data.availableBookStores.length > 0);
});

test('an Authorization header in another format is ignored', async () => {
  const answer = await store.http1({ headers: { Authorization: 'Bearer two pieces' } });
  assert.equal(answer.status, 200);
});
