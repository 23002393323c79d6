// A book of the catalogue, with the price of the requested store; `product` is null for an unknown
// uid.
import { requireCustomer } from '../src/callers.mjs';
import { asProductType } from '../src/productType.mjs';

export default function productDetails({ uid }, { caller, catalogue, store }) {
  requireCustomer(caller);
  const book = catalogue.get(uid);
  return { product: book ? asProductType(book, store) : null };
}
