// What the library hands to the browser ({ cookies, headers }, by name), and what of it reaches the
// store.
import assert from 'node:assert/strict';

// "a=b; c=d" as pairs.
function cookiePairs(text) {
  return text.split('; ').map((pair) => pair.split(/=(.*)/s).slice(0, 2));
}

// The cookies of both maps. A browser replaces any other Cookie header by that of its own cookies,
// so the pairs in the library's header become cookies as well.
export function allCookies({ cookies, headers }) {
  const inHeader = headers.Cookie ? cookiePairs(headers.Cookie) : [];
  return { ...Object.fromEntries(inHeader), ...cookies };
}

export function allHeaders({ headers: { Cookie, ...others } }) {
  return others;
}

// That the library gives everything, and that cookies and headers tell of the same tokens, reader
// and store.
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

// That a request carried what the library gave, each once, and else only what the browser sends of
// its own account, as in `bareRequest`.
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

// That a request tells nothing of the customer or the reader: only the browser's own name remains
// of all that the library gave before.
export function assertBare(request, earlierState) {
  assert.deepEqual(request.cookies, []);
  const given = Object.keys(allHeaders(earlierState)).map((name) => name.toLowerCase());
  const sent = request.headers.filter(([name]) => given.includes(name));
  assert.equal(sent.length, 1);
  const [[name, text]] = sent;
  assert.equal(name, 'user-agent');
  assert.match(text, /Chrome/);
}
