import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { startTestService } from './support.mjs';

let store;
before(async () => (store = await startTestService()));
after(() => store.stop());

const discover = async () => (await store.http1()).json().data.availableBookStores;

test('lists at least four stores, exactly one of them closed', async () => {
  const stores = await discover();
  assert.ok(stores.length >= 4);
  assert.equal(stores.filter(({ status }) => !status).length, 1);
});

test('lists the members of a store in the order of the query', async () => {
  const [first] = await discover();
  assert.deepEqual(first, {
    url: 'https://de.bookstore.example/',
    apiUrl: 'https://de.bookstore.example/graphql',
    storeName: 'Bücherwelt Deutschland',
    language: 'Deutsch',
    langCode: 'de',
    storeCode: 'de_de',
    status: true,
    integrationToken: 'inventedintegrationtokendede0000',
    providerID: 'bookstore-de',
    currency: 'EUR',
  });
  assert.equal(
    Object.keys(first).join(),
    'url,apiUrl,storeName,language,langCode,storeCode,status,integrationToken,providerID,currency',
  );
});

test('has one store without a name but with a language', async () => {
  const unnamed = (await discover()).filter(({ storeName }) => storeName === '');
  assert.deepEqual(
    unnamed.map(({ language }) => language),
    ['Français'],
  );
});

test('gives every store different addresses, code, provider and token', async () => {
  const stores = await discover();
  for (const member of ['url', 'apiUrl', 'storeCode', 'providerID', 'integrationToken']) {
    assert.equal(new Set(stores.map((one) => one[member])).size, stores.length, member);
  }
});
