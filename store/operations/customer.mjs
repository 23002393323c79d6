// The signed-in customer.
import { asCustomerType } from '../src/customerType.mjs';
import { Category, OperationError } from '../src/platformErrors.mjs';

export default function customer(_arguments, { caller, customers }) {
  if (caller.kind !== 'customer') {
    throw new OperationError("The current customer isn't authorized.", Category.Authorization);
  }
  return asCustomerType(customers.findById(caller.customerId));
}
