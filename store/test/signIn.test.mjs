import assert from 'node:assert/strict';
import { after, afterEach, before, beforeEach, describe, test } from 'node:test';

import { CustomerActions, failure, somebody } from './customerActions.mjs';
import { startTestService } from './support.mjs';

const refused =
  'The account sign-in was incorrect or your account is disabled temporarily. ' +
  'Please wait and try again later.';

let store;
let reader;
before(async () => {
  store = await startTestService();
  reader = new CustomerActions(store);
});
after(() => store.stop());
afterEach(() => store.reset());

const isIn = (answer) => !answer.json().errors;

for (const line of ['old', 'new']) {
  const refusedStatus = { old: 200, new: 401 }[line];

  describe(`on the ${line} line`, () => {
    beforeEach(() => store.useLine(line));

    test('a sign-in gives an access token, a refresh token and a lifetime', async () => {
      const answer = await reader.signIn(await reader.registered());
      assert.equal(answer.status, 200);
      const tokens = answer.json().data.generateCustomerToken;
      assert.equal(tokens.expires_in, 3600);
      assert.match(tokens.refresh_token, /^[\w-]{65}$/);
      const [header, claims, signature] = tokens.token.split('.');
      const read = (part) => JSON.parse(Buffer.from(part, 'base64url'));
      assert.deepEqual(read(header), { kid: '1', alg: 'HS256' });
      const { uid, utypid, iat, exp } = read(claims);
      assert.ok(uid > 0);
      assert.equal(utypid, 3);
      assert.ok(Math.abs(exp - iat - 3600) < 0.001);
      assert.match(signature, /^[\w-]{43}$/);
    });

    test('a second sign-in gives other tokens, and the first ones stay valid', async () => {
      const { person, accessToken, refreshToken } = await reader.signedIn();
      const second = await reader.tokens({ ...person, email: person.email.toUpperCase() });
      assert.notEqual(second.accessToken, accessToken);
      assert.notEqual(second.refreshToken, refreshToken);
      for (const token of [accessToken, second.accessToken]) {
        assert.equal((await reader.profile(token)).json().data.customer.email, person.email);
      }
    });

    test(`a wrong password and an unknown address look alike: ${refusedStatus}`, async () => {
      const person = await reader.registered();
      for (const wrong of [{ ...person, password: 'Moonlight-43' }, somebody()]) {
        assert.deepEqual(failure(await reader.signIn(wrong)), {
          status: refusedStatus,
          message: refused,
          category: 'graphql-authentication',
          data: { generateCustomerToken: null },
        });
      }
    });

    for (const name of ['email', 'password']) {
      test(`an empty ${name} is refused`, async () => {
        assert.deepEqual(failure(await reader.signIn({ ...somebody(), [name]: '' })), {
          status: 200,
          message: `Specify the "${name}" value.`,
          category: 'graphql-input',
          data: { generateCustomerToken: null },
        });
      });
    }

    test('a sign-in without the integration token needs a captcha', async () => {
      const { person, accessToken } = await reader.signedIn();
      for (const headers of [{}, { Authorization: `Bearer ${accessToken}` }]) {
        assert.deepEqual(failure(await reader.signIn(person, headers)), {
          status: 200,
          message: 'ReCaptcha validation failed, please try again',
          category: 'graphql-input',
          data: { generateCustomerToken: null },
        });
      }
    });
  });
}

describe('the cache id at sign-in', () => {
  const cacheIdOf = ({ headers }) => headers['x-magento-cache-id'];

  test('is already that of a customer on the old line', async () => {
    await store.useLine('old');
    const person = await reader.registered();
    const answer = await reader.signIn(person);
    const { accessToken } = await reader.tokens(person);
    assert.match(cacheIdOf(answer), /^[0-9a-f]{64}$/);
    assert.equal(cacheIdOf(answer), cacheIdOf(await reader.profile(accessToken)));
    assert.notEqual(cacheIdOf(answer), cacheIdOf(await reader.profile()));
  });

  test('stays that of a guest when the sign-in fails', async () => {
    await store.useLine('old');
    const failed = await reader.signIn(somebody());
    assert.equal(cacheIdOf(failed), cacheIdOf(await reader.profile()));
  });

  test('is not sent on the new line', async () => {
    assert.equal(cacheIdOf(await reader.signIn(await reader.registered())), undefined);
  });

  test('has the letter case of the setting', async () => {
    await store.control('PATCH', '/settings', { line: 'old', cacheIdHeader: 'x-magento-cache-id' });
    const { rawHeaders } = await reader.signIn(await reader.registered());
    assert.ok(rawHeaders.includes('x-magento-cache-id'));
  });
});

describe('after six failures', () => {
  const fail = async (person, times) => {
    for (let count = 0; count < times; count += 1) {
      await reader.signIn({ ...person, password: `wrong ${count}` });
    }
  };

  test('the right password is refused for half an hour and then accepted', async () => {
    const person = await reader.registered();
    await fail(person, 6);
    assert.equal(failure(await reader.signIn(person)).message, refused);
    await reader.passes(1790);
    assert.equal(isIn(await reader.signIn(person)), false);
    await reader.passes(1801);
    assert.equal(isIn(await reader.signIn(person)), true);
  });

  test('but not after five, and a good sign-in clears the count', async () => {
    const person = await reader.registered();
    for (let round = 0; round < 2; round += 1) {
      await fail(person, 5);
      assert.equal(isIn(await reader.signIn(person)), true);
    }
  });

  test('only that address is locked, in any letter case', async () => {
    const [person, other] = [await reader.registered(), await reader.registered()];
    await fail({ ...person, email: person.email.toUpperCase() }, 6);
    assert.equal(isIn(await reader.signIn(person)), false);
    assert.equal(isIn(await reader.signIn(other)), true);
  });
});

const oddTexts = [
  '"',
  '\\',
  "'",
  '\n',
  '\r\n\t',
  '\u0000',
  '😀',
  'ü',
  '\u2028',
  '{"a":1}',
  '$(x)',
  '%s%n',
  '<b>',
  'x'.repeat(10000),
  '__proto__',
  'constructor',
  ' ',
  '\ud800',
];
test('unusual addresses and passwords are refused like wrong ones and break nothing', async () => {
  for (const odd of oddTexts) {
    const answer = await reader.signIn({ email: odd, password: odd });
    assert.equal(failure(answer).message, refused, JSON.stringify(odd.slice(0, 20)));
  }
  assert.equal(isIn(await reader.signIn(await reader.registered())), true);
});

test('a password may contain any characters and must match exactly', async () => {
  const password = 'Aa1"\\\n😀\u0000é' + 'x'.repeat(200);
  const person = await reader.registered({ password });
  assert.equal(isIn(await reader.signIn(person)), true);
  assert.equal(isIn(await reader.signIn({ ...person, password: password.slice(0, -1) })), false);
});
