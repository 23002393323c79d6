// Which store a request for a page means.
const loopbackNames = ['localhost', '127.0.0.1', '[::1]'];

function storeByCode(seed, code) {
  return seed.stores.find((store) => store.storeCode === code);
}

// The store of the host's name. Under a loopback name it is the one in the path ("/de_de/"), and
// for "/" the one of the cookie "orvane-store", else the default one. Else undefined.
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
