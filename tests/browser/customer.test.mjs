// The customer who signed in on the reader is the one whom the store's web page greets in a real
// browser: with the cookies and headers that the library gives, and until it gives none.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';

import { Device } from './device.mjs';
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

// What the page shows to the eye, and what it says about the customer in its attributes.
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

// "a=b; c=d" as pairs.
function cookiePairs(text) {
  return text.split('; ').map((pair) => pair.split(/=(.*)/s).slice(0, 2));
}

// The cookies of both maps: a browser keeps its own Cookie header and takes no other, so the pairs in
// the library's header become cookies as well.
function allCookies({ cookies, headers }) {
  const inHeader = headers.Cookie ? cookiePairs(headers.Cookie) : [];
  return { ...Object.fromEntries(inHeader), ...cookies };
}

function allHeaders({ headers: { Cookie, ...others } }) {
  return others;
}

// Does what the firmware does with the library's answer before it shows the store.
async function equip(browser, state) {
  for (const [name, value] of Object.entries(allCookies(state))) {
    const cookie = { name, value, url: state.storeUrl, secure: true, httpOnly: true };
    const { success } = await browser.devTools('Network.setCookie', cookie);
    assert.ok(success, `the browser takes the cookie ${name}`);
  }
  await browser.devTools('Network.enable', {});
  await browser.devTools('Network.setExtraHTTPHeaders', { headers: allHeaders(state) });
}

// The one request for the page, as { cookies, headers } with names in lower case.
function pageRequest(requests) {
  const found = requests.filter(({ method, url }) => method === 'GET' && url === '/');
  assert.equal(found.length, 1);
  const [{ headers }] = found;
  const isCookie = ([name]) => name.toLowerCase() === 'cookie';
  const cookies = headers.filter(isCookie).flatMap(([, text]) => cookiePairs(text));
  const others = headers.filter((pair) => !isCookie(pair));
  return { cookies: cookies.sort(), headers: others.map(([name, text]) => [name.toLowerCase(), text]) };
}

for (const line of ['old', 'new']) {
  describe(`on the ${line} line`, () => {
    const folder = mkdtempSync(join(tmpdir(), 'browser-'));
    const store = new StoreService(join(folder, 'store'));
    const driver = new ChromeDriver();

    before(async () => {
      await store.start(line);
      await driver.start(folder);
    });

    after(async () => {
      await driver.stop();
      await store.stop();
      rmSync(folder, { recursive: true, force: true, maxRetries: 5 });
    });

    function openBrowser(keyDigest = store.keyDigest) {
      const profile = mkdtempSync(join(folder, 'profile-'));
      return driver.open({ profile, storePort: store.port, keyDigest });
    }

    // What a fresh browser that got `state` shows of the store, and what it asked the store for.
    async function visit(state, picture) {
      await store.forgetRequests();
      const browser = await openBrowser();
      try {
        await equip(browser, state);
        await browser.visit(state.storeUrl);
        writeFileSync(join(buildFolder, picture), await browser.screenshot());
        const page = await browser.evaluate(readPage);
        return { page, request: pageRequest(await store.requests()) };
      } finally {
        await browser.close();
      }
    }

    for (const customer of customers) {
      test(`the page of ${customer.storeCode} shows the customer until the sign-out`, async () => {
        const { storeCode, person, storeUrl, locale, price } = customer;
        const root = join(folder, storeCode);
        const device = new Device({ programs: buildFolder, library, root, store });
        await device.signIn(storeCode, { ...person, password: 'Moonlight-42' });

        const state = await device.browserState();
        assert.equal(state.isLoggedIn, true);
        assert.equal(state.storeUrl, storeUrl);
        assert.equal(state.headers.Cookie, customer.cookieHeader);
        const { page, request } = await visit(state, `${line}-${storeCode}-signed-in.png`);
        assert.deepEqual(page, {
          locale,
          price,
          heading: customer.greeting,
          isSignedIn: 'true',
          customer: person.email,
          serialNumber: state.cookies['orvane-serial-number'],
          cacheId: line === 'old' ? state.cookies['x-magento-cache-id'] : '',
        });
        assert.deepEqual(request.cookies, Object.entries(allCookies(state)).sort());
        const sent = new Map(request.headers);
        for (const [name, value] of Object.entries(allHeaders(state))) {
          assert.equal(sent.get(name.toLowerCase()), value, name);
        }

        await device.signOut();
        const signedOut = await device.browserState();
        assert.deepEqual(signedOut, { cookies: {}, headers: {}, storeUrl, isLoggedIn: false });
        const { page: laterPage } = await visit(signedOut, `${line}-${storeCode}-signed-out.png`);
        assert.equal(laterPage.isSignedIn, 'false');
        assert.equal(laterPage.heading, customer.nobody);
        assert.equal(laterPage.customer ?? '', '');
      });
    }

    test('the page shows nobody to a browser whose token is another', async () => {
      const root = join(folder, 'forged');
      const device = new Device({ programs: buildFolder, library, root, store });
      const person = { email: 'forged@example.org', firstname: 'Eve', lastname: 'Forge' };
      await device.signIn('en_gb', { ...person, password: 'Moonlight-42' });
      const state = await device.browserState();
      state.cookies['orvane-customer'] += 'x';
      const { page } = await visit(state, `${line}-forged.png`);
      assert.equal(page.isSignedIn, 'false');
    });
  });
}
