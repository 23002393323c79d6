import assert from 'node:assert/strict';
import { once } from 'node:events';
import http2 from 'node:http2';
import { after, afterEach, before, describe, test } from 'node:test';
import https from 'node:https';
import { createGunzip } from 'node:zlib';

import { discoveryBody, startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());
afterEach(() => store.reset());

function openHttp1(headers = {}) {
  const request = https.request({
    host: '127.0.0.1',
    port: store.service.port,
    path: '/graphql',
    method: 'POST',
    ca: store.ca,
    agent: false,
    headers: { 'Content-Type': 'application/json', ...headers },
  });
  return request.end(discoveryBody);
}

// Reads a response until `bytes` have arrived (after decompression), then leaves.
async function readAtLeast(bytes, headers) {
  const request = openHttp1(headers);
  const [response] = await once(request, 'response');
  const compressed = response.headers['content-encoding'] === 'gzip';
  const stream = compressed ? response.pipe(createGunzip()) : response;
  let received = 0;
  for await (const piece of stream) {
    received += piece.length;
    if (received >= bytes) break;
  }
  request.destroy();
  return received;
}

describe('a response can be changed', () => {
  test('in status, headers and body', async () => {
    await store.fault({
      status: 502,
      body: '502 Bad Gateway',
      headers: { 'content-type': 'text/html', 'Set-Cookie': ['a=1', 'b=2'], Pragma: null },
    });
    for (const answer of [await store.http1(), await store.http2()]) {
      assert.equal(answer.status, 502);
      assert.equal(answer.text, '502 Bad Gateway');
      assert.equal(answer.headers['content-type'], 'text/html');
      assert.deepEqual(answer.headers['set-cookie'], ['a=1', 'b=2']);
      assert.equal(answer.headers.pragma, undefined);
      assert.ok(answer.headers['x-frame-options']);
    }
  });

  test('to an empty body', async () => {
    await store.fault({ body: '' });
    assert.equal((await store.http1()).text, '');
  });

  test('to gzip for a client without gzip, and to plain for one with it', async () => {
    await store.fault({ gzip: true, times: 1 });
    await store.fault({ gzip: false, times: 1 });
    assert.equal((await store.http1()).headers['content-encoding'], 'gzip');
    const asked = await store.http1({ headers: { 'Accept-Encoding': 'gzip' } });
    assert.equal(asked.headers['content-encoding'], undefined);
  });
});

describe('a response can be slow', () => {
  test('before it begins, while other requests get responses', async () => {
    await store.fault({ delayMilliseconds: 60_000, times: 1 });
    const request = openHttp1();
    let begun = false;
    request.on('response', () => (begun = true));
    request.on('error', () => {});
    while ((await store.control('GET', '/requests')).json.length === 0);
    assert.equal((await store.http1()).status, 200);
    request.destroy();
    assert.equal(begun, false);
  });

  test('but arrives after its delay', async () => {
    await store.fault({ delayMilliseconds: 1 });
    assert.equal((await store.http1()).status, 200);
  });

  test('a few bytes at a time', async () => {
    await store.fault({ body: 'x'.repeat(35), drip: { bytes: 10, intervalMilliseconds: 1 } });
    const [response] = await once(openHttp1(), 'response');
    const sizes = [];
    for await (const piece of response) sizes.push(piece.length);
    assert.deepEqual(sizes, [10, 10, 10, 5]);
  });

  test('waiting between the pieces', async () => {
    await store.fault({ drip: { bytes: 10, intervalMilliseconds: 60_000 }, times: 1 });
    const request = openHttp1();
    const [response] = await once(request, 'response');
    let received = 0;
    response.on('data', (piece) => (received += piece.length));
    response.on('error', () => {});
    await once(response, 'data');
    assert.equal((await store.http1()).status, 200);
    request.destroy();
    assert.equal(received, 10);
  });

  test('and a client that leaves in between does no harm', async (t) => {
    const log = t.mock.method(console, 'error', () => {});
    await store.fault({ delayMilliseconds: 60_000, times: 1 });
    const request = openHttp1();
    request.on('error', () => {});
    while ((await store.control('GET', '/requests')).json.length === 0);
    request.destroy();
    assert.equal((await store.http1()).status, 200);
    assert.equal(log.mock.callCount(), 0);
  });
});

describe('a response can break off', () => {
  test('in the middle of the body over HTTP/1.1', async () => {
    await store.fault({ cutAfterBytes: 25 });
    await assert.rejects(store.http1(), { code: 'ECONNRESET', received: 25 });
  });

  test('in the middle of the body over HTTP/2', async () => {
    await store.fault({ cutAfterBytes: 25 });
    await assert.rejects(store.http2());
  });

  test('after the headers', async () => {
    await store.fault({ cutAfterBytes: 0 });
    await assert.rejects(store.http1(), { code: 'ECONNRESET', received: 0 });
  });

  test('at its end, without the end of the transfer', async () => {
    await store.fault({ body: '{}', cutAfterBytes: 100 });
    await assert.rejects(store.http1(), { code: 'ECONNRESET', received: 2 });
  });

  test('before it begins', async () => {
    await store.fault({ drop: true });
    await assert.rejects(store.http1(), { code: 'ECONNRESET', message: 'socket hang up' });
    await assert.rejects(store.http2());
  });
});

describe('a response can be endless', () => {
  const enough = 20 * 1024 * 1024;

  test('uncompressed', async () => {
    await store.fault({ endless: true });
    assert.ok((await readAtLeast(enough)) >= enough);
  });

  test('and small on the wire', async () => {
    await store.fault({ endless: true });
    assert.ok((await readAtLeast(enough, { 'Accept-Encoding': 'gzip' })) >= enough);
  });
});

describe('a client that leaves an endless response', () => {
  test('over HTTP/1.1 does no harm', async (t) => {
    const log = t.mock.method(console, 'error', () => {});
    await store.fault({ endless: true, times: 1 });
    await readAtLeast(1);
    assert.equal((await store.http1()).status, 200);
    assert.equal(log.mock.callCount(), 0);
  });

  test('over HTTP/2 does no harm', async (t) => {
    const log = t.mock.method(console, 'error', () => {});
    await store.fault({ endless: true, times: 1 });
    const session = http2.connect(store.service.url, { ca: store.ca, servername: 'localhost' });
    const stream = session.request({
      ':method': 'POST',
      ':path': '/graphql',
      'content-type': 'application/json',
    });
    stream.end(discoveryBody);
    await once(stream, 'data');
    session.destroy();
    assert.equal((await store.http1()).status, 200);
    assert.equal(log.mock.callCount(), 0);
  });
});

describe('a fault', () => {
  test('applies until it is cleared', async () => {
    await store.fault({ status: 503 });
    assert.equal((await store.http1()).status, 503);
    assert.equal((await store.http1()).status, 503);
    await store.control('DELETE', '/faults');
    assert.equal((await store.http1()).status, 200);
  });

  test('applies to its number of requests, and the next fault follows', async () => {
    await store.fault({ status: 503, times: 2 });
    await store.fault({ status: 504, times: 1 });
    const statuses = [];
    for (let count = 0; count < 4; count += 1) statuses.push((await store.http1()).status);
    assert.deepEqual(statuses, [503, 503, 504, 200]);
  });

  test('of one operation does not affect the others', async () => {
    await store.fault({ operation: 'customer', status: 503 });
    assert.equal((await store.http1()).status, 200);
    await store.fault({ operation: 'availableBookStores', status: 504 });
    assert.equal((await store.http1()).status, 504);
    await store.control('DELETE', '/faults?operation=availableBookStores');
    assert.equal((await store.http1()).status, 200);
    const left = (await store.control('GET', '/faults')).json;
    assert.deepEqual(left, [{ operation: 'customer', status: 503 }]);
  });

  test('of every operation also applies to requests without an operation', async () => {
    await store.fault({ status: 503 });
    assert.equal((await store.http1({ body: 'not JSON' })).status, 503);
  });
});
