import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { after, afterEach, before, describe, test } from 'node:test';

import { CustomerActions } from './customerActions.mjs';
import { startTestService } from './support.mjs';

let store;
let reader;
before(async () => {
  store = await startTestService();
  reader = new CustomerActions(store);
});
after(() => store.stop());
afterEach(() => store.reset());

function visit({ host = 'de.bookstore.example', path = '/', cookies = {}, ...rest } = {}) {
  const pairs = Object.entries(cookies).map(([name, value]) => `${name}=${value}`);
  const headers = { Host: host, ...(pairs.length > 0 ? { Cookie: pairs.join('; ') } : {}) };
  return store.http1({ method: 'GET', path, headers, ...rest });
}

// The attributes of <main>, by name without "data-".
function attributesOf({ text }) {
  const [, main] = /<main ([^>]*)>/.exec(text);
  return Object.fromEntries(
    [...main.matchAll(/data-([a-z-]+)="([^"]*)"/g)].map(([, name, value]) => [name, value]),
  );
}

const headingOf = ({ text }) => /<h1>(.*?)<\/h1>/s.exec(text)[1];

describe('the page of a store', () => {
  const stores = [
    ['de', 'de-DE', 'Bücherwelt Deutschland', 'Niemand ist angemeldet', '9,99\u00a0€'],
    ['uk', 'en-GB', 'The Reading Room', 'Nobody is signed in', '£8.99'],
    ['fr', 'fr-FR', 'Français', 'Personne n’est connecté', '9,99\u00a0€'],
    ['cz', 'cs-CZ', 'Česká knihovna', 'Nikdo není přihlášen', '1\u00a0349,00\u00a0Kč'],
    ['ch', 'de-CH', 'Buch &amp; Livre Schweiz', 'Niemand ist angemeldet', 'CHF\u00a011.90'],
  ];
  for (const [country, locale, name, nobody, price] of stores) {
    test(`${country} is in its language and currency`, async () => {
      const answer = await visit({ host: `${country}.bookstore.example:8443` });
      assert.equal(answer.status, 200);
      assert.equal(answer.headers['content-type'], 'text/html; charset=UTF-8');
      assert.ok(answer.text.startsWith(`<!doctype html>\n<html lang="${locale}">`));
      assert.ok(answer.text.includes(`<title>${name}</title>`));
      assert.equal(headingOf(answer), nobody);
      assert.ok(answer.text.includes(`<p class="price">${price}</p>`), price);
      assert.equal(answer.text.includes('undefined'), false);
    });
  }

  test('says when the store is closed', async () => {
    const answer = await visit({ host: 'pl.bookstore.example' });
    assert.equal(answer.status, 503);
    assert.ok(answer.text.includes('<html lang="pl-PL">'));
    assert.equal(headingOf(answer), 'Ta księgarnia jest obecnie zamknięta');
    assert.equal(attributesOf(answer)['signed-in'], 'false');
  });

  test('is found by path, cookie or default under a loopback name', async () => {
    const langOf = async (request) =>
      /lang="(.*?)"/.exec((await visit({ host: 'localhost', ...request })).text)[1];
    assert.equal(await langOf({}), 'de-DE');
    assert.equal(await langOf({ path: '/cs_cz/' }), 'cs-CZ');
    assert.equal(await langOf({ path: '/cs_cz?a=b', host: '127.0.0.1:1' }), 'cs-CZ');
    assert.equal(await langOf({ cookies: { 'orvane-store': 'en_gb' } }), 'en-GB');
    assert.equal(await langOf({ cookies: { 'orvane-store': 'mars' } }), 'de-DE');
  });

  test('is not served under other addresses', async () => {
    const elsewhere = [
      { path: '/de_de/' },
      { path: '/favicon.ico' },
      { host: 'api.bookstore.example' },
      { host: 'localhost', path: '/mars/' },
    ];
    for (const request of elsewhere) assert.equal((await visit(request)).status, 404);
    assert.equal((await visit({ method: 'POST' })).status, 405);
  });

  test('is served over HTTP/2 too', async () => {
    const headers = { ':method': 'GET', ':path': '/', ':authority': 'cz.bookstore.example' };
    const answer = await store.http2({ headers, body: '' });
    assert.equal(headingOf(answer), 'Nikdo není přihlášen');
  });
});

describe('a visitor', () => {
  test('without a customer is shown as a guest', async () => {
    for (const cookies of [{}, { 'orvane-customer': '' }, { 'orvane-customer': 'unknown' }]) {
      const answer = await visit({ cookies });
      assert.equal(headingOf(answer), 'Niemand ist angemeldet');
      const { 'signed-in': signedIn, state, customer } = attributesOf(answer);
      assert.deepEqual([signedIn, state, customer], ['false', 'guest', '']);
    }
  });

  test('who is signed in is greeted by name in every store', async () => {
    const { person, accessToken } = await reader.signedIn({
      firstname: 'Žofie',
      lastname: 'Malá',
    });
    const greetings = {
      de: 'Guten Tag, Žofie Malá!',
      uk: 'Welcome, Žofie Malá!',
      fr: 'Bonjour, Žofie Malá !',
      cz: 'Dobrý den, Žofie Malá!',
    };
    for (const [country, greeting] of Object.entries(greetings)) {
      const host = `${country}.bookstore.example`;
      const answer = await visit({ host, cookies: { 'orvane-customer': accessToken } });
      assert.equal(headingOf(answer), greeting);
      const { 'signed-in': signedIn, state, customer } = attributesOf(answer);
      assert.deepEqual([signedIn, state, customer], ['true', 'signed-in', person.email]);
    }
  });

  test('is recognised among all cookies of a reader, whose refresh token stays valid', async () => {
    const { accessToken, refreshToken } = await reader.signedIn();
    const answer = await visit({
      cookies: {
        'orvane-currency': 'EUR',
        'orvane-customer': accessToken,
        'orvane-customer-refresh': refreshToken,
        'orvane-locale': 'de',
        'orvane-serial-number': 'SN-00417',
        'orvane-store': 'de_de',
        'x-magento-cache-id': 'a'.repeat(64),
      },
    });
    const attributes = attributesOf(answer);
    assert.equal(attributes['signed-in'], 'true');
    assert.equal(attributes['serial-number'], 'SN-00417');
    assert.equal(attributes['cache-id'], 'a'.repeat(64));
    assert.ok(answer.text.includes('<dt>Seriennummer</dt><dd>SN-00417</dd>'));
    assert.ok(answer.text.includes('<dt>Währung</dt><dd>EUR</dd>'));
    for (const token of [accessToken, refreshToken]) assert.ok(!answer.text.includes(token));
    assert.equal((await reader.refresh(refreshToken)).status, 200);
  });

  test('whose token has expired is told that the session has ended, on both lines', async () => {
    const { accessToken } = await reader.signedIn();
    for (const line of ['old', 'new']) {
      await store.useLine(line);
      await reader.passes(3601);
      const answer = await visit({ cookies: { 'orvane-customer': accessToken } });
      assert.equal(answer.status, 200);
      assert.equal(headingOf(answer), 'Ihre Sitzung ist beendet');
      const { 'signed-in': signedIn, state, customer } = attributesOf(answer);
      assert.deepEqual([signedIn, state, customer], ['false', 'ended', '']);
    }
  });

  test('whose token was revoked is told the same', async () => {
    const { refreshToken, accessToken } = await reader.signedIn();
    await reader.refresh(refreshToken);
    await reader.refresh(refreshToken);
    const answer = await visit({ cookies: { 'orvane-customer': accessToken } });
    assert.equal(attributesOf(answer).state, 'ended');
  });
});

describe('no text from a client becomes markup', () => {
  test('not a name or an address', async () => {
    const { accessToken } = await reader.signedIn({
      firstname: '<script>alert(1)</script>',
      lastname: '"&\'',
      email: "a&b'c@example.org",
    });
    const answer = await visit({ cookies: { 'orvane-customer': accessToken } });
    assert.equal(
      headingOf(answer),
      'Guten Tag, &lt;script&gt;alert(1)&lt;/script&gt; &quot;&amp;&#39;!',
    );
    assert.equal(attributesOf(answer).customer, 'a&amp;b&#39;c@example.org');
    assert.doesNotMatch(answer.text, /<script/);
  });

  test('not a cookie', async () => {
    const evil = '"><img src=x>';
    const answer = await visit({
      cookies: {
        'orvane-serial-number': evil,
        'orvane-store': evil,
        'orvane-locale': evil,
        'orvane-currency': evil,
        'x-magento-cache-id': evil,
        'orvane-customer': evil,
      },
    });
    assert.equal(answer.text.includes('<img'), false);
    assert.equal(attributesOf(answer)['serial-number'], '&quot;&gt;&lt;img src=x&gt;');
  });
});

test('the policy allows the style sheet of the page and nothing else', async () => {
  const { headers, text } = await visit();
  const [, style] = /<style>(.*?)<\/style>/s.exec(text);
  const digest = createHash('sha256').update(style).digest('base64');
  assert.equal(
    headers['content-security-policy'],
    `default-src 'none'; style-src 'sha256-${digest}'; base-uri 'none'; form-action 'none'; ` +
      "frame-ancestors 'self'",
  );
  assert.doesNotMatch(text, /style="|src=|href=|url\(/);
  assert.equal(headers['cache-control'], 'private, no-store');
  assert.equal(headers.vary, 'Cookie');
});
