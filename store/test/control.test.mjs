import assert from 'node:assert/strict';
import { after, afterEach, before, describe, test } from 'node:test';

import { discoveryBody, startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());
afterEach(() => store.reset());

const requests = async () => (await store.control('GET', '/requests')).json;

describe('requests are read back', () => {
  test('with their headers as sent over HTTP/1.1, body and response status', async () => {
    await store.http1({ headers: { 'x-Odd-CASE': 'a  b', Store: 'de_de' } });
    const [request] = await requests();
    assert.equal(request.httpVersion, '1.1');
    assert.equal(request.method, 'POST');
    assert.equal(request.url, '/graphql');
    assert.equal(request.body, discoveryBody);
    assert.equal(request.operation, 'availableBookStores');
    assert.equal(request.status, 200);
    assert.deepEqual(request.headers[1], ['x-Odd-CASE', 'a  b']);
    assert.deepEqual(request.headers[2], ['Store', 'de_de']);
  });

  test('with their headers over HTTP/2', async () => {
    await store.http2({ headers: { store: 'de_de' } });
    const [request] = await requests();
    assert.equal(request.httpVersion, '2.0');
    assert.ok(request.headers.some(([name, value]) => name === 'store' && value === 'de_de'));
  });

  test('with bytes that are not UTF-8', async () => {
    const body = Buffer.from([0x7b, 0xff, 0xfe]);
    await store.http1({ body });
    assert.equal((await requests())[0].bodyBase64, body.toString('base64'));
  });

  test('with increasing numbers and one connection per client', async () => {
    await store.http1();
    await store.http1();
    const [first, second] = await requests();
    assert.equal(second.number, first.number + 1);
    assert.notEqual(second.connection, first.connection);
  });

  test('until they are cleared', async () => {
    await store.http1();
    await store.control('DELETE', '/requests');
    assert.deepEqual(await requests(), []);
  });

  test('the last two hundred of them', async () => {
    for (let count = 0; count < 201; count += 1) {
      await store.http1({ method: 'OPTIONS', agent: store.agent });
    }
    const kept = await requests();
    assert.equal(kept.length, 200);
    assert.equal(kept[199].number, kept[0].number + 199);
  });
});

describe('settings', () => {
  test('are shown and changed one by one', async () => {
    await store.control('PATCH', '/settings', { line: 'old' });
    assert.deepEqual((await store.control('GET', '/settings')).json, {
      line: 'old',
      cacheIdHeader: 'X-Magento-Cache-Id',
      sessionCookies: true,
      guestCheckoutLogin: true,
      tokenLifetimeSeconds: 3600,
      refreshTokenLifetimeSeconds: 2592000,
      clockOffsetSeconds: 0,
    });
  });

  const wrong = [
    [{ line: 'older' }, '"line" must be one of: old, new'],
    [{ lines: 'old' }, 'unknown setting "lines"; use line, cacheIdHeader, sessionCookies'],
    [{ cacheIdHeader: 'X-Other' }, '"cacheIdHeader" must be'],
    [{ sessionCookies: 1 }, '"sessionCookies" must be true or false'],
    [{ tokenLifetimeSeconds: 0 }, '"tokenLifetimeSeconds" must be an integer from 1 to 3153'],
    [{ clockOffsetSeconds: 1e99 }, '"clockOffsetSeconds" must be an integer from 0 to 3153'],
  ];
  for (const [value, message] of wrong) {
    test(`are all refused when one is invalid: ${JSON.stringify(value)}`, async () => {
      const answer = await store.control('PATCH', '/settings', { sessionCookies: false, ...value });
      assert.equal(answer.status, 400);
      assert.ok(answer.json.error.startsWith(message), answer.json.error);
      assert.equal((await store.control('GET', '/settings')).json.sessionCookies, true);
    });
  }
});

describe('an invalid fault is refused with the reason', () => {
  const wrong = [
    [[], 'a fault must be an object'],
    [{ stauts: 500 }, 'unknown member "stauts"; use operation, times'],
    [{ status: 99 }, '"status" must be a status from 200 to 599'],
    [{ times: 0 }, '"times" must be an integer above 0'],
    [{ drip: { bytes: 0, intervalMilliseconds: 1 } }, '"drip" must be'],
    [{ headers: { a: 1 } }, '"headers" must be'],
  ];
  for (const [value, message] of wrong) {
    test(JSON.stringify(value), async () => {
      const answer = await store.control('POST', '/faults', value);
      assert.equal(answer.status, 400);
      assert.ok(answer.json.error.startsWith(message), answer.json.error);
      assert.deepEqual((await store.control('GET', '/faults')).json, []);
    });
  }
});

test('the response to an unknown path lists the existing ones', async () => {
  const answer = await store.control('GET', '/elsewhere');
  assert.equal(answer.status, 404);
  assert.match(answer.json.error, /GET \/settings.*DELETE \/requests/);
});
