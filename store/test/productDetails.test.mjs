import assert from 'node:assert/strict';
import { after, before, beforeEach, describe, test } from 'node:test';

import { CustomerActions, failure } from './customerActions.mjs';
import { startTestService } from './support.mjs';

let store;
let accessToken;
before(async () => {
  store = await startTestService();
  ({ accessToken } = await new CustomerActions(store).signedIn());
});
after(() => store.stop());
beforeEach(() => store.reset());

const prices =
  'price_range {\nminimum_price {\nfinal_price {\ncurrency\nvalue\n}\n' +
  'regular_price {\ncurrency\nvalue\n}\n}\n}\n';

// The query texts of the library, which inserts the uid unescaped.
const fullQuery = (uid) =>
  `{\nproductDetails(uid: "${uid}") {\nproduct {\nuid\nname\nthumbnail {\nurl\n}\n${prices}` +
  'authors {\nfull_name\n}\n}\n}\n}\n';
const priceQuery = (uid) =>
  `{\nproductDetails(uid: "${uid}") {\nproduct {\nuid\n${prices}}\n}\n}\n`;

function ask(query, { storeCode = 'de_de', token = accessToken } = {}) {
  return store.http1({
    body: `${JSON.stringify({ query, variables: null })}\n`,
    headers: { Store: storeCode, ...(token ? { Authorization: `Bearer ${token}` } : {}) },
    agent: store.agent,
  });
}

async function productOf(query, options) {
  const answer = await ask(query, options);
  assert.equal(answer.status, 200);
  return answer.json().data.productDetails.product;
}

const same = (value, currency) => ({
  minimum_price: { final_price: { currency, value }, regular_price: { currency, value } },
});

describe('the query texts of the library', () => {
  test('get everything that a reader shows of a book', async () => {
    assert.deepEqual(await productOf(fullQuery('MTAz')), {
      uid: 'MTAz',
      name: 'Kleine Kunde vom Schnee',
      thumbnail: { url: 'https://de.bookstore.example/media/catalog/product/103.png' },
      price_range: same(12, 'EUR'),
      authors: [{ full_name: 'Anton Weiler' }, { full_name: 'Ruth Weiler-Öztan' }],
    });
  });

  test('get only the uid and the prices', async () => {
    assert.deepEqual(await productOf(priceQuery('MTAz')), {
      uid: 'MTAz',
      price_range: same(12, 'EUR'),
    });
  });

  test('are syntax errors when the uid contains a quote', async () => {
    for (const [line, status] of [
      ['old', 500],
      ['new', 400],
    ]) {
      await store.useLine(line);
      for (const query of [fullQuery('MT"Az'), priceQuery('MT"Az')]) {
        const answer = await ask(query);
        assert.equal(answer.status, status);
        assert.match(failure(answer).message, /^Syntax Error: /);
        assert.equal('data' in answer.json(), false);
      }
    }
  });
});

describe('a price', () => {
  test('is in the currency of the store', async () => {
    const expected = { de_de: [9.99, 'EUR'], en_gb: [8.99, 'GBP'], cs_cz: [249, 'CZK'] };
    for (const [storeCode, [value, currency]] of Object.entries(expected)) {
      const product = await productOf(priceQuery('MTAw'), { storeCode });
      assert.deepEqual(product.price_range, same(value, currency));
    }
  });

  test('is sent with all its decimals, or none for an integer', async () => {
    const whole = await ask(priceQuery('MTAz'));
    assert.match(whole.text, /"value":12}/);
    const long = await ask(priceQuery('MTA4'));
    assert.match(long.text, /"value":8\.396226415094}/);
  });

  test('is below the regular price when reduced, and has the discount', async () => {
    const price =
      'regular_price { value currency } final_price { value currency } ' +
      'discount { amount_off percent_off }';
    const { price_range: range } = await productOf(
      `{ productDetails(uid: "MTA0") { product { price_range {
        minimum_price { ${price} } maximum_price { ${price} } } } } }`,
    );
    assert.deepEqual(range.minimum_price, {
      regular_price: { value: 0.99, currency: 'EUR' },
      final_price: { value: 0.693, currency: 'EUR' },
      discount: { amount_off: 0.3, percent_off: 30 },
    });
    assert.deepEqual(range.maximum_price, range.minimum_price);
  });

  test('of 0 has a discount of 0', async () => {
    const { price_range: range } = await productOf(
      '{ productDetails(uid: "Nw==") { product { price_range { minimum_price {' +
        'regular_price { value } discount { amount_off percent_off } } } } } }',
    );
    assert.deepEqual(range.minimum_price, {
      regular_price: { value: 0 },
      discount: { amount_off: 0, percent_off: 0 },
    });
  });
});

describe('a book', () => {
  const authorsOf = async (uid) => (await productOf(fullQuery(uid))).authors;

  test('without authors has an empty list, or null', async () => {
    assert.deepEqual(await authorsOf('MTEx'), []);
    assert.equal(await authorsOf('MTE1'), null);
  });

  test('without a picture has no thumbnail', async () => {
    const { name, thumbnail } = await productOf(fullQuery('MTAwMQ=='));
    assert.deepEqual([name, thumbnail], ['Ohne Umschlag', null]);
  });

  test('names its picture even when that is missing or a placeholder', async () => {
    const pictures = { MTAw: '100', 'MjAwMzA=': 'placeholder', MTIzNDU2: '123456' };
    for (const [uid, picture] of Object.entries(pictures)) {
      const { thumbnail } = await productOf(fullQuery(uid), { storeCode: 'cs_cz' });
      const url = `https://cz.bookstore.example/media/catalog/product/${picture}.png`;
      assert.deepEqual(thumbnail, { url });
    }
  });

  test('labels its thumbnail with its name', async () => {
    const { thumbnail } = await productOf(
      '{ productDetails(uid: "MTIz") { product { thumbnail { label } } } }',
    );
    assert.deepEqual(thumbnail, { label: 'The Bell at Number 123' });
  });

  test('that the catalogue does not have is null, without an error', async () => {
    for (const uid of ['MTk5OTk=', '', '100', 'mtaw', '__proto__']) {
      const answer = await ask(fullQuery(uid));
      assert.equal(answer.status, 200);
      assert.deepEqual(answer.json(), { data: { productDetails: { product: null } } });
    }
  });

  test('needs a uid', async () => {
    const answer = await ask('{ productDetails { product { uid } } }');
    assert.match(failure(answer).message, /argument "uid" of type "ID!" is required/);
  });
});

describe('a caller who is not a customer', () => {
  const callers = { 'a guest': null, 'an integration': 'inventedintegrationtokendede0000' };
  for (const [who, token] of Object.entries(callers)) {
    test(`is refused: ${who}`, async () => {
      for (const [line, status] of [
        ['old', 200],
        ['new', 403],
      ]) {
        await store.useLine(line);
        assert.deepEqual(failure(await ask(fullQuery('MTAz'), { token })), {
          status,
          message: "The current customer isn't authorized.",
          category: 'graphql-authorization',
          data: { productDetails: null },
        });
      }
    });
  }
});
