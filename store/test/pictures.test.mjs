import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { inflateSync } from 'node:zlib';

import { encodePng } from '../src/png.mjs';
import { startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());

const folder = '/media/catalog/product';
const fetchPicture = (path, members = {}) =>
  store.http1({ method: 'GET', path, headers: { Host: 'de.bookstore.example' }, ...members });

// The chunks of a PNG file after its signature.
function chunksOf(bytes) {
  const chunks = [];
  for (let start = 8; start < bytes.length; start += bytes.readUInt32BE(start) + 12) {
    const end = start + 8 + bytes.readUInt32BE(start);
    chunks.push({
      type: bytes.toString('latin1', start + 4, start + 8),
      content: bytes.subarray(start + 8, end),
      checksum: bytes.toString('hex', end, end + 4),
    });
  }
  return chunks;
}

describe('the picture of a book', () => {
  test('is a small PNG that anybody may fetch and cache', async () => {
    const { status, headers, raw } = await fetchPicture(`${folder}/103.png`);
    assert.equal(status, 200);
    assert.equal(headers['content-type'], 'image/png');
    assert.equal(headers['cache-control'], 'public, max-age=3600');
    assert.equal(raw.toString('hex', 0, 8), '89504e470d0a1a0a');
    assert.deepEqual([raw.readUInt32BE(16), raw.readUInt32BE(20)], [120, 180]);
    assert.ok(raw.length < 2048);
  });

  test('is always the same and differs from all others', async () => {
    const pictures = await Promise.all(
      [103, 103, 104, 'placeholder'].map((name) => fetchPicture(`${folder}/${name}.png`)),
    );
    for (const { status } of pictures) assert.equal(status, 200);
    const [first, again, ...others] = pictures.map(({ raw }) => raw.toString('hex'));
    assert.equal(again, first);
    assert.equal(new Set([first, ...others]).size, 3);
  });

  test('is mirrored within a white border', async () => {
    const { raw } = await fetchPicture(`${folder}/103.png`);
    const bytes = inflateSync(chunksOf(raw)[1].content);
    const rowAt = (y) => [...bytes.subarray(y * 121 + 1, (y + 1) * 121)];
    assert.ok(rowAt(9).every((shade) => shade === 255));
    assert.ok(
      rowAt(10)
        .slice(0, 10)
        .every((shade) => shade === 255),
    );
    assert.ok(new Set(rowAt(10)).size > 2);
    assert.deepEqual(rowAt(10), rowAt(10).reverse());
  });

  test('is served over HTTP/2 and with parameters after its name', async () => {
    const headers = { ':method': 'GET', ':path': `${folder}/103.png?width=120` };
    const { status, raw } = await store.http2({ headers, body: '' });
    assert.equal(status, 200);
    assert.deepEqual(raw, (await fetchPicture(`${folder}/103.png`)).raw);
  });

  test('is not served under other paths', async () => {
    const missing = [
      '99.png',
      '103',
      '103.jpg',
      '',
      'x/103.png',
      // Books without a picture, with the placeholder, and with a missing picture.
      '1001.png',
      '20030.png',
      '123456.png',
    ];
    for (const name of missing) {
      assert.equal((await fetchPicture(`${folder}/${name}`)).status, 404, name);
    }
    assert.equal((await fetchPicture(`${folder}/103.png`, { method: 'POST' })).status, 405);
  });
});

test('a PNG has its pixels row by row, with the checksums of the format', () => {
  const shades = [
    [0, 10, 20],
    [100, 110, 255],
  ];
  const bytes = encodePng({ width: 3, height: 2, shadeAt: (x, y) => shades[y][x] });
  const [header, pixels, end] = chunksOf(bytes);
  assert.equal(header.type, 'IHDR');
  assert.equal(header.content.toString('hex'), '00000003000000020800000000');
  assert.equal(header.checksum, 'b81f39c6');
  assert.equal(pixels.type, 'IDAT');
  assert.deepEqual([...inflateSync(pixels.content)], [0, ...shades[0], 0, ...shades[1]]);
  assert.deepEqual([end.type, end.checksum], ['IEND', 'ae426082']);
});
