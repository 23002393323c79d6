// The books of the stores, as in the catalogue file.
import { readFileSync } from 'node:fs';

const covers = ['painted', 'placeholder', 'missing', 'none'];

// A uid is the number of the product in base64. The number is also the name of the picture.
function numberOf(uid) {
  return Buffer.from(uid, 'base64').toString();
}

function uidOf(number) {
  return Buffer.from(number).toString('base64');
}

const isPrice = (value) => Number.isFinite(value) && value >= 0;

// The fault of a book's prices, or undefined.
function priceProblem({ prices, specialPrices = {} }, currencies) {
  const unpriced = currencies.find((currency) => !isPrice(prices?.[currency]));
  if (unpriced) return `has no price in ${unpriced}`;
  const unreduced = Object.entries(specialPrices).find(
    ([currency, price]) => !isPrice(price) || !(price < prices[currency]),
  );
  return unreduced && `has a special price in ${unreduced[0]} that is not below its price`;
}

function problemOf(book, currencies) {
  const number = numberOf(String(book.uid));
  if (!/^\d+$/.test(number) || uidOf(number) !== book.uid) {
    return 'has a "uid" that is not a number in base64';
  }
  if (typeof book.name !== 'string') return 'has no "name"';
  if (!covers.includes(book.cover)) return `needs a "cover" that is one of: ${covers.join(', ')}`;
  return priceProblem(book, currencies);
}

// Reads the catalogue file and returns a Map of the books by uid. A book has `uid`, `number`,
// `name`, `cover`, `prices` by currency, and optionally `authors` and `specialPrices`. Throws for a
// book that one of the stores cannot sell.
export function loadCatalogue(path, { stores }) {
  const currencies = [...new Set(stores.map(({ currency }) => currency))];
  const books = new Map();
  for (const listed of JSON.parse(readFileSync(path, 'utf8')).books) {
    const book = { cover: 'painted', ...listed };
    const problem = books.has(book.uid) ? 'is listed twice' : problemOf(book, currencies);
    if (problem) throw new Error(`catalogue ${path}: book "${book.uid}" ${problem}`);
    books.set(book.uid, { ...book, number: numberOf(book.uid) });
  }
  return books;
}
