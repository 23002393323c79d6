// Reads the parts of a request as the platform does: parameters, operation, store and currency.
import { getOperationAST, parse } from 'graphql';

import { Category, Reason, Refusal } from './platformErrors.mjs';

function isObject(value) {
  return typeof value === 'object' && value !== null && !Array.isArray(value);
}

function parseJson(text) {
  try {
    return JSON.parse(text);
  } catch {
    return undefined;
  }
}

function unreadable() {
  return new Refusal(Reason.UnreadableBody, 'Syntax Error: Unable to parse the request.');
}

// PHP does not distinguish an empty object from an empty list.
function readVariables(value) {
  if (value === undefined || value === null) return {};
  if (Array.isArray(value) && value.length === 0) return {};
  if (!isObject(value)) throw new Refusal(Reason.Unexpected, 'Internal server error');
  return value;
}

function postedParameters({ headers, body }) {
  if (!(headers['content-type'] ?? '').includes('application/json')) {
    throw new Refusal(Reason.ContentType, 'Request content type must be application/json');
  }
  const members = parseJson(body.toString('utf8'));
  if (!isObject(members)) throw unreadable();
  return members;
}

function queriedParameters({ url }) {
  const search = new URL(url, 'https://localhost').searchParams;
  const variables = search.get('variables');
  const members = {
    query: search.get('query'),
    operationName: search.get('operationName'),
    variables: variables ? parseJson(variables) : undefined,
  };
  if (variables && members.variables === undefined) throw unreadable();
  return members;
}

// The query, variables and operation name of a GET or POST request.
export function readParameters(request) {
  const members = request.method === 'GET' ? queriedParameters(request) : postedParameters(request);
  return {
    query: typeof members.query === 'string' ? members.query : '',
    operationName: typeof members.operationName === 'string' ? members.operationName : null,
    variables: readVariables(members.variables),
  };
}

// The operation of a query: its kind ("query", "mutation") and the name of its first root field.
// Both are null when the query has no operation. `parses` is false for a syntax error.
export function describeOperation({ query, operationName }) {
  let document;
  try {
    document = parse(query);
  } catch {
    return { parses: false, kind: null, name: null };
  }
  const operation = getOperationAST(document, operationName);
  const field = operation?.selectionSet.selections.find(({ kind }) => kind === 'Field');
  return { parses: true, kind: operation?.operation ?? null, name: field?.name.value ?? null };
}

export function readCookies(header) {
  const pairs = (header ?? '').split(';').map((pair) => {
    const [name, ...value] = pair.split('=');
    return [name.trim(), value.join('=').trim()];
  });
  return Object.fromEntries(pairs.filter(([name]) => name !== ''));
}

// The store of a request: from the Store header, else the cookie "store", else the default store.
export function findStore(headers, seed) {
  const code =
    (headers.store ?? '').trim() || readCookies(headers.cookie).store || seed.defaultStoreCode;
  const store = seed.stores.find((candidate) => candidate.storeCode === code);
  if (store?.status) return store;
  throw new Refusal(Reason.Store, 'Requested store is not found', Category.Input);
}

export function checkCurrency(headers, store) {
  const currency = headers['content-currency'];
  if (!currency || currency === store.currency) return;
  throw new Refusal(Reason.Currency, 'Please correct the target currency', Category.Input);
}
