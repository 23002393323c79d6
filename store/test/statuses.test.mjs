import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';

import { startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());

const posted = (members) => ({ body: JSON.stringify(members) });
const query = '{ availableBookStores { url } }';

// The request, its status on each line, and the message (null: a response without errors,
// undefined: a page that is not JSON).
const situations = [
  { name: 'a good query', request: {}, old: [200, null], new: [200, null] },
  {
    name: 'variables as an empty object',
    request: posted({ query, variables: {} }),
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'variables as an empty list',
    request: posted({ query, variables: [] }),
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'variables as a text',
    request: posted({ query, variables: 'email' }),
    old: [500, 'Internal server error'],
    new: [500, 'Internal server error'],
  },
  {
    name: 'a content type that holds application/json somewhere',
    request: { headers: { 'Content-Type': 'text/plain; x=application/json' } },
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'another content type',
    request: { headers: { 'Content-Type': 'text/plain' } },
    old: [500, 'Request content type must be application/json'],
    new: [415, 'Request content type must be application/json'],
  },
  {
    name: 'a body that is not JSON',
    request: { body: 'query=x' },
    old: [500, undefined],
    new: [400, 'Syntax Error: Unable to parse the request.'],
  },
  {
    name: 'a body that is JSON but no object',
    request: { body: '[1]' },
    old: [500, undefined],
    new: [400, 'Syntax Error: Unable to parse the request.'],
  },
  {
    name: 'a query with a syntax error',
    request: posted({ query: '{ availableBookStores(' }),
    old: [500, 'Syntax Error: Expected Name, found <EOF>.'],
    new: [400, 'Syntax Error: Expected Name, found <EOF>.'],
  },
  {
    name: 'no query at all',
    request: posted({ variables: null }),
    old: [500, 'Syntax Error: Unexpected <EOF>.'],
    new: [400, 'Syntax Error: Unexpected <EOF>.'],
  },
  {
    name: 'an unknown field',
    request: posted({ query: '{ availableBookStores { planet } }' }),
    old: [200, 'Cannot query field "planet" on type "BookStore".'],
    new: [200, 'Cannot query field "planet" on type "BookStore".'],
  },
  {
    name: 'a missing variable',
    request: posted({
      query: 'query ($on: Boolean!) { availableBookStores @include(if: $on) { url } }',
    }),
    old: [200, 'Variable "$on" of required type "Boolean!" was not provided.'],
    new: [200, 'Variable "$on" of required type "Boolean!" was not provided.'],
  },
  {
    name: 'an unknown store',
    request: { headers: { Store: 'mars' } },
    old: [500, 'Requested store is not found'],
    new: [200, 'Requested store is not found'],
  },
  {
    name: 'a closed store',
    request: { headers: { Store: 'pl_pl' } },
    old: [500, 'Requested store is not found'],
    new: [200, 'Requested store is not found'],
  },
  {
    name: 'a store code in the wrong letter case',
    request: { headers: { Store: 'DE_DE' } },
    old: [500, 'Requested store is not found'],
    new: [200, 'Requested store is not found'],
  },
  {
    name: 'a store code between blanks',
    request: { headers: { Store: '  de_ch  ' } },
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'an empty store code with an unknown one in the cookie "store"',
    request: { headers: { Store: '', Cookie: 'a=b; store=mars' } },
    old: [500, 'Requested store is not found'],
    new: [200, 'Requested store is not found'],
  },
  {
    name: "an unknown store in the clients' own cookie",
    request: { headers: { Cookie: 'orvane-store=mars' } },
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'the currency of the store',
    request: { headers: { Store: 'de_ch', 'Content-Currency': 'CHF' } },
    old: [200, null],
    new: [200, null],
  },
  {
    name: 'the currency of another store',
    request: { headers: { Store: 'de_ch', 'Content-Currency': 'EUR' } },
    old: [500, 'Please correct the target currency'],
    new: [200, 'Please correct the target currency'],
  },
];

for (const line of ['old', 'new']) {
  describe(`on the ${line} line`, () => {
    before(() => store.useLine(line));

    for (const situation of situations) {
      const [status, message] = situation[line];
      test(`${situation.name}: ${status}`, async () => {
        const answer = await store.http1(situation.request);
        assert.equal(answer.status, status);
        if (message === undefined) {
          assert.match(answer.headers['content-type'], /^text\/html/);
          assert.match(answer.text, /There has been an error processing your request/);
        } else if (message === null) {
          assert.deepEqual(Object.keys(answer.json()), ['data']);
          assert.ok(answer.json().data.availableBookStores.length > 0);
        } else {
          assert.deepEqual(Object.keys(answer.json()), ['errors']);
          assert.equal(answer.json().errors[0].message, message);
        }
      });
    }
  });
}

describe('on both lines', () => {
  test('a GET request succeeds', async () => {
    const answer = await store.http1({
      method: 'GET',
      path: `/graphql?query=${encodeURIComponent(query)}&variables=${encodeURIComponent('{}')}`,
    });
    assert.equal(answer.status, 200);
    assert.equal(answer.json().data.availableBookStores[0].url, 'https://de.bookstore.example/');
  });

  test('a GET request with variables that are not JSON is refused', async () => {
    const path = `/graphql?query=${encodeURIComponent(query)}&variables=%7B`;
    assert.equal((await store.http1({ method: 'GET', path })).status, 400);
  });

  test('OPTIONS gets 204 without a body', async () => {
    const answer = await store.http1({ method: 'OPTIONS' });
    assert.equal(answer.status, 204);
    assert.equal(answer.text, '');
  });

  test('another method gets 405 and another path 404, both with pages', async () => {
    const wrongMethod = await store.http1({ method: 'DELETE' });
    const wrongPath = await store.http1({ path: '/elsewhere' });
    assert.equal(wrongMethod.status, 405);
    assert.equal(wrongPath.status, 404);
    assert.match(wrongPath.headers['content-type'], /^text\/html/);
  });

  test('a body above the limit gets 413', async () => {
    const answer = await store.http1({ body: ' '.repeat(10 * 1024 * 1024 + 1) });
    assert.equal(answer.status, 413);
  });
});
