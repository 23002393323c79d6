// The stores' web pages: finds the store and the signed-in customer of a request.
import { page, pages } from './pages.mjs';
import { Refusal } from './platformErrors.mjs';
import { findAddressedStore } from './storefrontAddress.mjs';
import { pagePolicy, renderPage } from './storefrontPage.mjs';
import { readCookies } from './requestParts.mjs';

// The visitor of the customer cookie: `state` is "signed-in" (with the `customer`), "ended" for an
// expired or revoked token, or "guest".
function findVisitor(token, { customers, sessions }) {
  if (!token) return { state: 'guest' };
  try {
    const customer = customers.findById(sessions.customerOf(token));
    return customer ? { state: 'signed-in', customer } : { state: 'guest' };
  } catch (error) {
    if (error instanceof Refusal) return { state: 'ended' };
    throw error;
  }
}

function asAnswer(status, body) {
  const plain = page(status, body);
  const headers = [
    ...plain.headers,
    ['Content-Security-Policy', pagePolicy],
    ['Referrer-Policy', 'no-referrer'],
    ['Cache-Control', 'private, no-store'],
    ['Vary', 'Cookie'],
  ];
  return { ...plain, headers };
}

// Makes the function `(request) => response` for everything that is not GraphQL; see frame.mjs for
// requests and responses. A page reads the access token only; it never uses up the refresh token,
// which belongs to the reader.
export function createStorefront({ seed, customers, sessions }) {
  return function answer(request) {
    const cookies = readCookies(request.headers.cookie);
    const store = findAddressedStore(request, cookies, seed);
    if (!store) return page(404, pages.notFound);
    if (request.method !== 'GET') return page(405, pages.notAllowed);
    const visitor = store.status
      ? findVisitor(cookies['orvane-customer'], { customers, sessions })
      : { state: 'closed' };
    return asAnswer(store.status ? 200 : 503, renderPage({ store, visitor, cookies }));
  };
}
