import { createHash } from 'node:crypto';

// The id under which the platform would cache a response. Callers that see the same prices share
// it.
export function cacheId({ store, caller, salt }) {
  const factors = {
    CURRENCY: store.currency,
    CUSTOMER_GROUP: caller.kind === 'customer' ? '1' : '0',
    CUSTOMER_TAX_RATE: '0',
    IS_LOGGED_IN: caller.kind === 'customer' ? '1' : '0',
    STORE_ID: store.storeCode,
  };
  const names = Object.keys(factors).sort();
  const text = [...names.map((name) => factors[name].toUpperCase()), salt].join('|');
  return createHash('sha256').update(text).digest('hex');
}
