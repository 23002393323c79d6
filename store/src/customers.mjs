// The customers. All stores belong to one website, so an account is valid in all of them.
import { emailKey } from './emailAddress.mjs';

export class Customers {
  #document;
  #clock;

  constructor(document, clock) {
    this.#document = document;
    this.#clock = clock;
  }

  findById(id) {
    return this.#document.value.customers.find((customer) => customer.id === id);
  }

  findByEmail(email) {
    const key = emailKey(email);
    return this.#document.value.customers.find((customer) => emailKey(customer.email) === key);
  }

  // Stores and returns a new customer (`fields` as in the schema's input, with `passwordHash`
  // instead of the password). Returns undefined when the address is already registered.
  add(fields) {
    if (this.findByEmail(fields.email)) return undefined;
    const { customers } = this.#document.value;
    const id = 1 + Math.max(0, ...customers.map((customer) => customer.id));
    const customer = { id, createdAt: new Date(this.#clock()).toISOString(), ...fields };
    this.#document.update(() => ({ customers: [...customers, customer] }));
    return customer;
  }
}
