// A book of the catalogue, priced for the store that is asked; `product` is null for a uid that no
// book has.
import { requireCustomer } from '../src/callers.mjs';
import { asProductType } from '../src/productType.mjs';

export default function productDetails({ uid }, { caller, catalogue, store }) {
  requireCustomer(caller);
  const book = catalogue.get(uid);
  return { product: book ? asProductType(book, store) : null };
}
