import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { loadCatalogue } from '../src/catalogue.mjs';
import { loadSeed } from '../src/seed.mjs';
import { temporaryFolder } from './support.mjs';

const besideTests = (name) => fileURLToPath(new URL(`../${name}`, import.meta.url));
const catalogue = loadCatalogue(besideTests('catalogue.json'), loadSeed(besideTests('seed.json')));
const books = [...catalogue.values()];
const count = (isSuch) => books.filter(isSuch).length;

describe('the catalogue', () => {
  test('has at least fifty books, each under its own name', () => {
    assert.ok(books.length >= 50);
    assert.equal(new Set(books.map(({ name }) => name)).size, books.length);
  });

  test('has every kind of book that a reader must handle', () => {
    const kinds = {
      reduced: (book) => book.specialPrices !== undefined,
      free: (book) => book.prices.EUR === 0,
      'by several authors': (book) => book.authors?.length > 1,
      'by nobody': (book) => book.authors?.length === 0,
      'without a list of authors': (book) => book.authors === undefined,
      'without a thumbnail': (book) => book.cover === 'none',
      'with a placeholder': (book) => book.cover === 'placeholder',
      'with a picture that is missing': (book) => book.cover === 'missing',
      'with a whole price': (book) => book.prices.EUR > 0 && Number.isInteger(book.prices.EUR),
      'with a long price': (book) => String(book.prices.EUR).length > 10,
      'beyond ASCII': (book) => /[^\0-\x7f]/.test(book.name),
    };
    for (const [kind, isSuch] of Object.entries(kinds)) assert.ok(count(isSuch) > 0, kind);
  });
});

const good = { uid: 'MTIz', name: 'A book', prices: { EUR: 10, CZK: 250 } };
const stores = [{ currency: 'EUR' }, { currency: 'CZK' }, { currency: 'EUR' }];

function load(t, list) {
  const folder = temporaryFolder();
  t.after(folder.remove);
  const path = join(folder.path, 'catalogue.json');
  writeFileSync(path, JSON.stringify({ books: list }));
  return loadCatalogue(path, { stores });
}

test('a book is found by its uid and knows its number', (t) => {
  const book = { ...good, number: '123', cover: 'painted' };
  assert.deepEqual(load(t, [good]).get('MTIz'), book);
});

test('a book can be reduced in one currency only', (t) => {
  assert.equal(load(t, [{ ...good, specialPrices: { CZK: 249.9 } }]).size, 1);
});

const wrongBooks = [
  [[good, good], /book "MTIz" is listed twice/],
  [[{ ...good, uid: undefined }], /"uid" that is not a number in base64/],
  [[{ ...good, uid: 'YWJj' }], /"uid" that is not a number in base64/],
  [[{ ...good, uid: '123' }], /"uid" that is not a number in base64/],
  [[{ ...good, uid: 'MTIz=' }], /"uid" that is not a number in base64/],
  [[{ ...good, name: undefined }], /has no "name"/],
  [[{ ...good, cover: 'red' }], /needs a "cover" that is one of: painted, placeholder, missing/],
  [[{ ...good, prices: undefined }], /has no price in EUR/],
  [[{ ...good, prices: { EUR: 10 } }], /has no price in CZK/],
  [[{ ...good, prices: { EUR: -1, CZK: 1 } }], /has no price in EUR/],
  [[{ ...good, prices: { EUR: '10', CZK: 1 } }], /has no price in EUR/],
  [[{ ...good, specialPrices: { EUR: 10 } }], /special price in EUR that is not below its price/],
  [[{ ...good, specialPrices: { EUR: -1 } }], /special price in EUR that is not below its price/],
  [[{ ...good, specialPrices: { USD: 1 } }], /special price in USD that is not below its price/],
];
for (const [list, message] of wrongBooks) {
  test(`a catalogue is refused: ${message.source}, ${JSON.stringify(list)}`, (t) => {
    assert.throws(() => load(t, list), message);
  });
}
