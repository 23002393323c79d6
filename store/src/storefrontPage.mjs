// Renders a store's page. `escape` escapes every value, and the content security policy allows only
// the style sheet in the page itself.
import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';

import { fill, textsFor } from './texts.mjs';

const style = readFileSync(new URL('../storefront.css', import.meta.url), 'utf8');
const styleDigest = createHash('sha256').update(style).digest('base64');

export const pagePolicy =
  `default-src 'none'; style-src 'sha256-${styleDigest}'; ` +
  "base-uri 'none'; form-action 'none'; frame-ancestors 'self'";

const prices = {
  EUR: [9.99, 12, 7.5, 14.95],
  GBP: [8.99, 10, 6.5, 12.95],
  CHF: [11.9, 14, 8.5, 16.95],
  CZK: [249, 299, 189.5, 1349],
  PLN: [42.99, 51, 32.5, 64.95],
};

const entities = { '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;', "'": '&#39;' };

function escapeHtml(text) {
  return String(text).replace(/[&<>"']/g, (character) => entities[character]);
}

// "de_ch" becomes "de-CH".
function localeOf(store) {
  return Intl.getCanonicalLocales(store.storeCode.replace('_', '-'))[0];
}

function formatPrice(store, price) {
  const { currency } = store;
  return new Intl.NumberFormat(localeOf(store), { style: 'currency', currency }).format(price);
}

function renderBook(store, { title, author }, index) {
  return `<li>
<div class="cover cover-${index + 1}" aria-hidden="true"><span>${escapeHtml(title)}</span></div>
<h3>${escapeHtml(title)}</h3>
<p>${escapeHtml(author)}</p>
<p class="price">${escapeHtml(formatPrice(store, prices[store.currency][index]))}</p>
</li>`;
}

function renderBooks(store, texts) {
  const books = texts.books.map((book, index) => renderBook(store, book, index));
  return `<section aria-labelledby="picks">
<h2 id="picks">${escapeHtml(texts.picks)}</h2>
<ul class="books">
${books.join('\n')}
</ul>
</section>`;
}

// Heading and hint for each state of the visitor.
function welcome({ state, customer }, texts) {
  switch (state) {
    case 'signed-in': {
      const name = `${customer.firstname} ${customer.lastname}`;
      return [fill(texts.greeting, { name }), texts.greetingHint];
    }
    case 'ended':
      return [texts.ended, texts.endedHint];
    case 'closed':
      return [texts.closed, ''];
    default:
      return [texts.nobody, texts.nobodyHint];
  }
}

// The data about the reader from the browser's cookies.
function renderReader(cookies, texts) {
  const rows = [
    [texts.serialNumber, cookies['orvane-serial-number']],
    [texts.storeCode, cookies['orvane-store']],
    [texts.language, cookies['orvane-locale']],
    [texts.currency, cookies['orvane-currency']],
  ].filter(([, value]) => value);
  if (rows.length === 0) return '';
  const items = rows.map(
    ([name, value]) => `<div><dt>${escapeHtml(name)}</dt><dd>${escapeHtml(value)}</dd></div>`,
  );
  return `<section class="reader" aria-labelledby="reader">
<h2 id="reader">${escapeHtml(texts.reader)}</h2>
<dl>${items.join('')}</dl>
</section>`;
}

// Attributes for tests: they have the same information as the texts, in every language.
function mainAttributes({ state, customer }, cookies) {
  const attributes = {
    'data-signed-in': state === 'signed-in',
    'data-state': state,
    'data-customer': customer?.email ?? '',
    'data-serial-number': cookies['orvane-serial-number'] ?? '',
    'data-cache-id': cookies['x-magento-cache-id'] ?? '',
  };
  return Object.entries(attributes)
    .map(([name, value]) => ` ${name}="${escapeHtml(value)}"`)
    .join('');
}

// The page of a store for a visitor (see storefront.mjs) with these cookies.
export function renderPage({ store, visitor, cookies }) {
  const texts = textsFor(store);
  const name = escapeHtml(store.storeName || store.language);
  const [heading, hint] = welcome(visitor, texts);
  return `<!doctype html>
<html lang="${escapeHtml(localeOf(store))}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>${name}</title>
<style>${style}</style>
</head>
<body>
<header>
<p class="name">${name}</p>
<p class="tagline">${escapeHtml(texts.tagline)}</p>
</header>
<main${mainAttributes(visitor, cookies)}>
<section class="welcome ${visitor.state}">
<h1>${escapeHtml(heading)}</h1>
<p>${escapeHtml(hint)}</p>
</section>
${visitor.state === 'closed' ? '' : renderBooks(store, texts)}
${renderReader(cookies, texts)}
</main>
</body>
</html>
`;
}
