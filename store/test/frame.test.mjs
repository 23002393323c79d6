// The request frame with operations made for these tests: errors that they throw, and mutations.
import assert from 'node:assert/strict';
import { beforeEach, describe, test } from 'node:test';

import { buildSchema } from 'graphql';

import { createFrame } from '../src/frame.mjs';
import { Category, OperationError, Reason, Refusal } from '../src/platformErrors.mjs';
import { defaultSettings } from '../src/settings.mjs';

const schema = buildSchema(`
  type Query { customer: String, broken: String, who: String, product(uid: ID!): String }
  type Mutation { signIn: String, promote: String }
`);

const operations = {
  customer() {
    throw new OperationError("The current customer isn't authorized.", Category.Authorization);
  },
  broken() {
    throw new TypeError('a defect of the service');
  },
  who: (_arguments, { caller }) => caller.kind,
  product: ({ uid }) => `product ${uid}`,
  signIn() {
    throw new OperationError('The account sign-in was incorrect.', Category.Authentication);
  },
  promote(_arguments, context) {
    context.caller = { kind: 'customer' };
    return 'done';
  },
};

function expiredTokens(token) {
  if (token !== 'expired') return undefined;
  throw new Refusal(Reason.Token, 'Consumer key has expired', Category.Authentication);
}

let settings;
let answer;
beforeEach(() => {
  settings = { ...defaultSettings };
  const seed = {
    defaultStoreCode: 'de_de',
    stores: [{ storeCode: 'de_de', status: true, currency: 'EUR' }],
  };
  answer = createFrame({
    schema,
    operations,
    services: { seed },
    tokenReaders: [expiredTokens, (token) => (token === 'good' ? { kind: 'customer' } : undefined)],
    settings,
    salt: 'salt',
  });
});

function ask(query, headers = {}) {
  return answer({
    method: 'POST',
    url: '/graphql',
    headers: { 'content-type': 'application/json', ...headers },
    body: Buffer.from(JSON.stringify({ query })),
    hostName: 'localhost',
  });
}

function header({ headers }, name) {
  return headers.find(([other]) => other.toLowerCase() === name)?.[1];
}

const statuses = [
  { query: '{ customer }', old: 200, new: 403 },
  { query: 'mutation { signIn }', old: 200, new: 401 },
];

for (const situation of statuses) {
  for (const line of ['old', 'new']) {
    test(`${situation.query} fails with ${situation[line]} on the ${line} line`, async () => {
      settings.line = line;
      assert.equal((await ask(situation.query)).status, situation[line]);
    });
  }
}

test('the first error with a category determines the status', async (t) => {
  t.mock.method(console, 'error', () => {});
  const customerFirst = await ask('{ broken customer }');
  assert.equal(customerFirst.status, 403);
});

test('a failed root field is null, and errors come before data', async () => {
  const { body } = await ask('{ customer }');
  assert.equal(
    body,
    '{"errors":[{"message":"The current customer isn\'t authorized.",' +
      '"locations":[{"line":1,"column":3}],"path":["customer"],' +
      '"extensions":{"category":"graphql-authorization"}}],"data":{"customer":null}}',
  );
});

test('the old line writes extensions after the message and escapes quotes', async () => {
  settings.line = 'old';
  const { body } = await ask('{ customer }');
  assert.equal(
    body,
    '{"errors":[{"message":"The current customer isn\\u0027t authorized.",' +
      '"extensions":{"category":"graphql-authorization"},' +
      '"locations":[{"line":1,"column":3}],"path":["customer"]}],"data":{"customer":null}}',
  );
});

test('only the old line gives validation errors a category', async () => {
  const onNew = JSON.parse((await ask('{ planet }')).body).errors[0];
  settings.line = 'old';
  const onOld = JSON.parse((await ask('{ planet }')).body).errors[0];
  assert.equal(onNew.extensions, undefined);
  assert.deepEqual(onOld.extensions, { category: 'graphql' });
});

test('unexpected errors of an operation are hidden from the client', async (t) => {
  const log = t.mock.method(console, 'error', () => {});
  const { status, body } = await ask('{ broken }');
  assert.equal(status, 200);
  assert.deepEqual(JSON.parse(body), {
    errors: [
      { message: 'Internal server error', locations: [{ line: 1, column: 3 }], path: ['broken'] },
    ],
    data: { broken: null },
  });
  assert.equal(log.mock.callCount(), 1);
});

test('a mutation over GET is refused', async () => {
  const get = (line) => {
    settings.line = line;
    const url = `/graphql?query=${encodeURIComponent('mutation { promote }')}`;
    return answer({ method: 'GET', url, headers: {}, body: Buffer.alloc(0), hostName: '' });
  };
  const onNew = await get('new');
  assert.equal(onNew.status, 405);
  assert.match(onNew.body, /Mutation requests allowed only for POST requests/);
  assert.equal((await get('old')).status, 500);
});

test('an operation gets its arguments', async () => {
  assert.equal((await ask('{ product(uid: 12) }')).body, '{"data":{"product":"product 12"}}');
});

test('the response names the root field, for the faults', async () => {
  assert.equal((await ask('{ alias: who }')).operation, 'who');
  assert.equal((await ask('{ who')).operation, null);
});

test('blanks around the store code are ignored', async () => {
  assert.equal((await ask('{ who }', { store: ' de_de ' })).body, '{"data":{"who":"guest"}}');
});

describe('a bearer token', () => {
  const who = async (authorization) =>
    JSON.parse((await ask('{ who }', { authorization })).body).data?.who;

  test('that a reader knows identifies the caller', async () => {
    assert.equal(await who('Bearer good'), 'customer');
    assert.equal(await who('bEARER good'), 'customer');
  });

  test('in any other format is ignored', async () => {
    for (const value of ['Bearer  good', 'Bearer good x', 'Basic good', 'good', 'Bearer', '']) {
      assert.equal(await who(value), 'guest', value);
    }
  });

  test('that has expired is refused on the new line and ignored on the old', async () => {
    const refused = await ask('{ who }', { authorization: 'Bearer expired' });
    assert.equal(refused.status, 401);
    assert.equal(
      refused.body,
      '{"errors":[{"message":"Consumer key has expired",' +
        '"extensions":{"category":"graphql-authentication"}}]}',
    );
    settings.line = 'old';
    assert.equal(await who('Bearer expired'), 'guest');
  });
});

describe('the cache id', () => {
  const id = async (query, headers) => header(await ask(query, headers), 'x-magento-cache-id');

  test('is the same for the same kind of caller and different for a customer', async () => {
    assert.equal(await id('{ who }'), await id('{ product(uid: 1) }'));
    assert.notEqual(await id('{ who }'), await id('{ who }', { authorization: 'Bearer good' }));
  });

  test('is not sent on the new line when the body contains the word mutation', async () => {
    assert.equal(await id('mutation { promote }'), undefined);
    assert.equal(await id('{ product(uid: "mutation") }'), undefined);
  });

  test('on the old line reflects who the mutation signed in', async () => {
    settings.line = 'old';
    const asCustomer = await id('{ who }', { authorization: 'Bearer good' });
    assert.equal(await id('mutation { promote }'), asCustomer);
  });
});
