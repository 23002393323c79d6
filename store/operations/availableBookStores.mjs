// The regional stores, as in the seed file. A public operation.
export default function availableBookStores(_arguments, { seed }) {
  return seed.stores;
}
