// The store's web page greets the signed-in customer in a real browser, with the cookies and
// headers from the library, until the customer signs out.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';

import { Device } from './device.mjs';
import {
  allCookies,
  allHeaders,
  assertBare,
  assertCarried,
  assertComplete,
  pageRequest,
} from './handedOver.mjs';
import { StoreService } from './storeService.mjs';
import { ChromeDriver } from './webDriver.mjs';

const { GRAPHQL_API_LIBRARY: library, BROWSER_TEST_FOLDER: buildFolder } = process.env;
assert.ok(library && buildFolder, 'run it through ctest, which tells where the built programs are');

const customers = [
  {
    storeCode: 'de_de',
    person: { email: 'juergen@example.org', firstname: 'Jürgen', lastname: 'Groß' },
    storeUrl: 'https://de.bookstore.example/',
    locale: 'de-DE',
    greeting: 'Guten Tag, Jürgen Groß!',
    nobody: 'Niemand ist angemeldet',
    price: '9,99\u00a0€',
    cookieHeader: 'orvane-currency=EUR; orvane-locale=de; orvane-store=de_de',
  },
  {
    storeCode: 'en_gb',
    person: { email: 'o.hara+books@example.org', firstname: 'Zoë', lastname: "O'Hara & Sons" },
    storeUrl: 'https://uk.bookstore.example/',
    locale: 'en-GB',
    greeting: "Welcome, Zoë O'Hara & Sons!",
    nobody: 'Nobody is signed in',
    price: '£8.99',
    cookieHeader: 'orvane-currency=GBP; orvane-locale=en; orvane-store=en_gb',
  },
];

// The visible text of the page, and its attributes about the customer.
const readPage = `
  const main = document.querySelector('main');
  return {
    locale: document.documentElement.lang,
    heading: document.querySelector('h1').textContent,
    price: document.querySelector('.price').textContent,
    isSignedIn: main.dataset.signedIn,
    customer: main.dataset.customer,
    serialNumber: main.dataset.serialNumber,
    cacheId: main.dataset.cacheId,
  };`;

// Passes the library's data to the browser as the firmware does before it shows the store.
async function equip(browser, state) {
  for (const [name, value] of Object.entries(allCookies(state))) {
    const cookie = { name, value, url: state.storeUrl, secure: true, httpOnly: true };
    const { success } = await browser.devTools('Network.setCookie', cookie);
    assert.ok(success, `the browser takes the cookie ${name}`);
  }
  await browser.devTools('Network.enable', {});
  await browser.devTools('Network.setExtraHTTPHeaders', { headers: allHeaders(state) });
}

for (const line of ['old', 'new']) {
  describe(`on the ${line} line`, () => {
    let folder;
    let store;
    const driver = new ChromeDriver();

    before(async () => {
      folder = mkdtempSync(join(tmpdir(), 'browser-'));
      store = new StoreService(join(folder, 'store'));
      await store.start(line);
      await driver.start(folder);
    });

    after(async () => {
      driver.stop();
      await store.stop().finally(() => {
        rmSync(folder, { recursive: true, force: true, maxRetries: 10 });
      });
    });

    // Calls `use` with a new browser that trusts the given key.
    async function withBrowser(keyDigest, use) {
      const profile = mkdtempSync(join(folder, 'profile-'));
      const browser = await driver.open({ profile, storePort: store.port, keyDigest });
      try {
        return await use(browser);
      } finally {
        await browser.close();
      }
    }

    // The page in a new browser that got `state`, and the browser's requests to the store.
    async function visit(state, picture) {
      await store.forgetRequests();
      return withBrowser(store.keyDigest, async (browser) => {
        await equip(browser, state);
        await browser.visit(state.storeUrl);
        writeFileSync(join(buildFolder, picture), await browser.screenshot());
        const page = await browser.evaluate(readPage);
        return { page, request: pageRequest(await store.requests()) };
      });
    }

    async function signedInDevice(storeCode, person) {
      const root = mkdtempSync(join(folder, 'device-'));
      const device = new Device({ programs: buildFolder, library, root, store });
      await device.signIn(storeCode, { ...person, password: 'Moonlight-42' });
      return device;
    }

    for (const customer of customers) {
      const { storeCode, person, storeUrl, locale, price } = customer;
      test(`the page of ${storeCode} greets the customer until the sign-out`, async () => {
        const device = await signedInDevice(storeCode, person);
        const state = await device.browserState();
        assert.equal(state.isLoggedIn, true);
        assert.equal(state.storeUrl, storeUrl);
        assertComplete(state, customer, line === 'old' ? ['x-magento-cache-id'] : []);
        const greeting = await visit(state, `${line}-${storeCode}-signed-in.png`);
        assert.deepEqual(greeting.page, {
          locale,
          price,
          heading: customer.greeting,
          isSignedIn: 'true',
          customer: person.email,
          serialNumber: state.cookies['orvane-serial-number'],
          cacheId: state.cookies['x-magento-cache-id'] ?? '',
        });

        await device.signOut();
        const signedOut = await device.browserState();
        assert.deepEqual(signedOut, { cookies: {}, headers: {}, storeUrl, isLoggedIn: false });
        const parting = await visit(signedOut, `${line}-${storeCode}-signed-out.png`);
        assert.deepEqual(parting.page, {
          locale,
          price,
          heading: customer.nobody,
          isSignedIn: 'false',
          customer: '',
          serialNumber: '',
          cacheId: '',
        });

        assertBare(parting.request, state);
        assertCarried(greeting.request, state, parting.request);
      });
    }

    test('the page shows nobody to a browser with another token', async () => {
      const person = { email: 'eve@example.org', firstname: 'Eve', lastname: 'Forge' };
      const device = await signedInDevice('en_gb', person);
      const state = await device.browserState();
      state.cookies['orvane-customer'] += 'x';
      const { page } = await visit(state, `${line}-forged.png`);
      assert.equal(page.heading, 'Nobody is signed in');
      assert.equal(page.isSignedIn, 'false');
      assert.equal(page.customer, '');
    });

    test('a browser that does not trust the key of the store shows no page', async () => {
      const noKey = Buffer.alloc(32).toString('base64');
      await store.forgetRequests();
      await withBrowser(noKey, async (browser) => {
        await browser.visit('https://de.bookstore.example/');
        const shown = await browser.evaluate('return document.body.textContent');
        assert.match(shown, /ERR_CERT_AUTHORITY_INVALID/);
      });
      assert.deepEqual(await store.requests(), []);
    });
  });
}
