// The regional stores as the seed file lists them. A public operation: anyone may ask.
export default function availableBookStores(_arguments, { seed }) {
  return seed.stores;
}
