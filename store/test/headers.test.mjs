import assert from 'node:assert/strict';
import { Agent } from 'node:https';
import { after, afterEach, before, describe, test } from 'node:test';

import { startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());
afterEach(() => store.reset());

describe('the cache id', () => {
  test('keeps its letter case over HTTP/1.1', async () => {
    const { rawHeaders } = await store.http1();
    const id = rawHeaders[rawHeaders.indexOf('X-Magento-Cache-Id') + 1];
    assert.match(id, /^[0-9a-f]{64}$/);
  });

  test('is in lower case over HTTP/2', async () => {
    const { headers } = await store.http2();
    assert.match(headers['x-magento-cache-id'], /^[0-9a-f]{64}$/);
  });

  test('differs between stores', async () => {
    const german = await store.http1({ headers: { Store: 'de_de' } });
    const czech = await store.http1({ headers: { Store: 'cs_cz' } });
    assert.notEqual(german.headers['x-magento-cache-id'], czech.headers['x-magento-cache-id']);
  });

  test('follows the store cookie when there is no Store header', async () => {
    const byCookie = await store.http1({ headers: { Cookie: 'x=y; store=cs_cz' } });
    const byHeader = await store.http1({ headers: { Store: 'cs_cz', Cookie: 'store=de_de' } });
    assert.equal(byCookie.headers['x-magento-cache-id'], byHeader.headers['x-magento-cache-id']);
  });

  test('is spelt as the setting says, or not sent', async () => {
    await store.control('PATCH', '/settings', { cacheIdHeader: 'x-magento-cache-id' });
    assert.ok((await store.http1()).rawHeaders.includes('x-magento-cache-id'));
    await store.control('PATCH', '/settings', { cacheIdHeader: null });
    assert.equal((await store.http1()).headers['x-magento-cache-id'], undefined);
  });
});

describe('cookies', () => {
  test('are two lines in a response to POST', async () => {
    const { headers } = await store.http1({ headers: { Host: 'api.bookstore.example:8443' } });
    const cookies = headers['set-cookie'];
    assert.equal(cookies.length, 2);
    assert.match(
      cookies[0],
      /^PHPSESSID=[0-9a-f]{26}; expires=[^;]+ GMT; Max-Age=3600; path=\/; domain=api\.bookstore\.example; secure; HttpOnly; SameSite=Lax$/,
    );
    assert.match(
      cookies[1],
      /^private_content_version=[0-9a-f]{32}; expires=[^;]+ GMT; Max-Age=315360000; path=\/; secure; SameSite=Lax$/,
    );
  });

  test('are omitted when sessions are off, and for GET', async () => {
    const path = '/graphql?query=%7BavailableBookStores%7Burl%7D%7D';
    assert.equal((await store.http1({ method: 'GET', path })).headers['set-cookie'], undefined);
    await store.control('PATCH', '/settings', { sessionCookies: false });
    assert.equal((await store.http1()).headers['set-cookie'], undefined);
  });
});

describe('the response', () => {
  test('is JSON that nobody may cache', async () => {
    const { headers } = await store.http1();
    assert.equal(headers['content-type'], 'application/json');
    assert.equal(headers.pragma, 'no-cache');
    assert.equal(headers['cache-control'], 'no-store, no-cache, must-revalidate, max-age=0');
    assert.ok(Date.parse(headers.expires) < Date.now());
    assert.equal(headers['x-frame-options'], 'SAMEORIGIN');
    assert.equal(headers['transfer-encoding'], 'chunked');
  });

  test('may be cached when the request was a GET', async () => {
    const path = '/graphql?query=%7BavailableBookStores%7Burl%7D%7D';
    const { headers } = await store.http1({ method: 'GET', path });
    assert.equal(headers['cache-control'], undefined);
    assert.equal(headers.pragma, undefined);
  });

  test('leaves the connection open for the next request', async (t) => {
    const agent = new Agent({ keepAlive: true });
    t.after(() => agent.destroy());
    const first = await store.http1({ agent });
    await store.http1({ agent });
    assert.equal(first.headers['keep-alive'], 'timeout=75');
    const requests = (await store.control('GET', '/requests')).json;
    assert.equal(requests[0].connection, requests[1].connection);
  });

  test('has the older cache-control order on the old line', async () => {
    await store.useLine('old');
    const { headers } = await store.http1();
    assert.equal(headers['cache-control'], 'max-age=0, must-revalidate, no-cache, no-store');
  });

  test('escapes slashes and everything outside ASCII', async () => {
    const { text } = await store.query('{ availableBookStores { url storeName } }');
    assert.ok(
      text.startsWith(
        '{"data":{"availableBookStores":[{"url":"https:\\/\\/de.bookstore.example\\/",' +
          '"storeName":"B\\u00fccherwelt Deutschland"}',
      ),
    );
  });
});

describe('compression', () => {
  const encoding = async (accepted) =>
    (await store.http1({ headers: { 'Accept-Encoding': accepted } })).headers['content-encoding'];

  test('is used when the client accepts gzip', async () => {
    assert.equal(await encoding('deflate, gzip;q=0.5, br'), 'gzip');
    const compressed = await store.http2({ headers: { 'accept-encoding': 'gzip' } });
    assert.equal(compressed.headers['content-encoding'], 'gzip');
    assert.ok(compressed.json().data.availableBookStores.length > 0);
  });

  test('is not used when the client refuses gzip or does not mention it', async () => {
    assert.equal((await store.http1()).headers['content-encoding'], undefined);
    assert.equal(await encoding('deflate, br'), undefined);
    assert.equal(await encoding('gzip;q=0'), undefined);
  });
});
