// A book as the schema's type Product, in the currency of a store.
import { pictureUrl } from './pictures.mjs';

function roundedToCents(value) {
  return Math.round(value * 100) / 100;
}

// Like the platform, this rounds the discount but not the prices: a price that was reduced by a
// percentage is sent with all its decimals.
function asPrice(regular, final, currency) {
  const off = regular - final;
  return {
    regular_price: { value: regular, currency },
    final_price: { value: final, currency },
    discount: {
      amount_off: roundedToCents(off),
      percent_off: off === 0 ? 0 : roundedToCents((off / regular) * 100),
    },
  };
}

export function asProductType(book, store) {
  const { uid, name, authors, prices, specialPrices } = book;
  const { currency } = store;
  const regular = prices[currency];
  const price = asPrice(regular, specialPrices?.[currency] ?? regular, currency);
  const url = pictureUrl(book, store);
  return {
    uid,
    name,
    thumbnail: url && { url, label: name },
    price_range: { minimum_price: price, maximum_price: price },
    authors: authors?.map((fullName) => ({ full_name: fullName })),
  };
}
