// Finds the store of a request for a page.
const loopbackNames = ['localhost', '127.0.0.1', '[::1]'];

function storeByCode(seed, code) {
  return seed.stores.find((store) => store.storeCode === code);
}

// The store with the host name. With a loopback name, the store in the path ("/de_de/"); for the
// path "/", the store in the cookie "orvane-store", or the default store. Undefined if there is
// none.
export function findAddressedStore({ url, hostName }, cookies, seed) {
  const [path] = url.split('?');
  const host = hostName.toLowerCase();
  if (loopbackNames.includes(host)) {
    const code = path.slice(1).replace(/\/$/, '');
    if (code !== '') return storeByCode(seed, code);
    return storeByCode(seed, cookies['orvane-store']) ?? storeByCode(seed, seed.defaultStoreCode);
  }
  if (path !== '/') return undefined;
  return seed.stores.find((store) => new URL(store.url).hostname === host);
}
