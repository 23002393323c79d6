// A customer as the schema's type Customer. Addresses are not stored; the platform sends no id.
const Subscription = Object.freeze({ Subscribed: 1, Unsubscribed: 3 });

export function asCustomerType(customer) {
  const { isSubscribed, dateOfBirth } = customer;
  return {
    ...customer,
    id: null,
    date_of_birth: dateOfBirth,
    dob: dateOfBirth,
    created_at: customer.createdAt,
    is_subscribed: isSubscribed,
    subscribe_status: isSubscribed ? Subscription.Subscribed : Subscription.Unsubscribed,
    allow_remote_shopping_assistance: customer.allowsShoppingAssistance,
    addresses: [],
  };
}
