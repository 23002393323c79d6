// Checks the data that the library gives the browser ({ cookies, headers }, by name), and the part
// of it that reaches the store.
import assert from 'node:assert/strict';

// "a=b; c=d" as pairs.
function cookiePairs(text) {
  return text.split('; ').map((pair) => pair.split(/=(.*)/s).slice(0, 2));
}

// The cookies of both maps. A browser replaces any Cookie header with its own cookies, so the pairs
// in the library's header become cookies, too.
export function allCookies({ cookies, headers }) {
  const inHeader = headers.Cookie ? cookiePairs(headers.Cookie) : [];
  return { ...Object.fromEntries(inHeader), ...cookies };
}

export function allHeaders({ headers: { Cookie, ...others } }) {
  return others;
}

// Checks that the data is complete, and that cookies and headers have the same tokens, reader and
// store.
export function assertComplete({ cookies, headers }, { storeCode, cookieHeader }, cacheIdNames) {
  const tokenNames = ['orvane-customer', 'orvane-customer-refresh', 'orvane-serial-number'];
  assert.deepEqual(Object.keys(cookies), [...tokenNames, ...cacheIdNames]);
  const [access, refresh, serialNumber] = tokenNames.map((name) => cookies[name]);
  assert.ok(access && refresh && access !== refresh);
  const { 'User-Agent': userAgent, ...others } = headers;
  assert.match(userAgent, /^Orvane Reader\//);
  assert.deepEqual(others, {
    Authorization: `Bearer ${access}`,
    'Content-Type': 'application/json',
    Cookie: cookieHeader,
    RefreshToken: `Bearer ${refresh}`,
    Store: storeCode,
    'x-header-deviceid': serialNumber,
    'x-header-reader-model': 'eink 417',
    'x-header-software-version': '3.2.105',
  });
}

// The one request for the page, as pairs of { cookies, headers }; HTTP/2 has names in lower case.
export function pageRequest(requests) {
  const found = requests.filter(({ method, url }) => method === 'GET' && url === '/');
  assert.equal(found.length, 1);
  const [{ httpVersion, headers }] = found;
  assert.equal(httpVersion, '2.0');
  const cookies = headers.filter(([name]) => name === 'cookie');
  return {
    cookies: cookies.flatMap(([, text]) => cookiePairs(text)).sort(),
    headers: headers.filter(([name]) => name !== 'cookie'),
  };
}

// Checks that a request had all the library's data, each part once, and otherwise only the
// browser's own headers, as in `bareRequest`.
export function assertCarried(request, state, bareRequest) {
  assert.deepEqual(request.cookies, Object.entries(allCookies(state)).sort());
  const given = Object.entries(allHeaders(state)).map(([name, text]) => [name.toLowerCase(), text]);
  for (const [name, text] of given) {
    const sent = request.headers.filter(([other]) => other === name);
    assert.deepEqual(sent, [[name, text]]);
  }
  const isGiven = ([name]) => given.some(([other]) => other === name);
  assert.deepEqual(
    request.headers.filter((header) => !isGiven(header)),
    bareRequest.headers.filter((header) => !isGiven(header)),
  );
}

// Checks that a request has no data about the customer or the reader: of the library's earlier
// data, only the user agent remains.
export function assertBare(request, earlierState) {
  assert.deepEqual(request.cookies, []);
  const given = Object.keys(allHeaders(earlierState)).map((name) => name.toLowerCase());
  const sent = request.headers.filter(([name]) => given.includes(name));
  assert.equal(sent.length, 1);
  const [[name, text]] = sent;
  assert.equal(name, 'user-agent');
  assert.match(text, /Chrome/);
}
