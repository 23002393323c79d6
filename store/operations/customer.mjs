// The signed-in customer.
import { requireCustomer } from '../src/callers.mjs';
import { asCustomerType } from '../src/customerType.mjs';

export default function customer(_arguments, { caller, customers }) {
  requireCustomer(caller);
  return asCustomerType(customers.findById(caller.customerId));
}
