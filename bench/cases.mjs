// What is compared. Each row names the operation (a row of both programs, with a file of that name
// in answers/), the connection, the authorities, and the figure to reach: the time through the
// library as a ratio to the bare program's.
//
//   connection   kept: one for all operations; changing: as kept, but each answer differs from the
//                one before, so that what is stored changes; new: the server closes it after each
//                answer; cold: one operation in a fresh process, counted from its start
//   authorities  own: a file with the run's own authority alone; system: that of the machine with
//                it appended
//   count        operations per process
//
// Rows with `items` add to the queue of samples, in which so many wait; no server takes part.

export const cases = [
  { operation: 'discovery', connection: 'kept', authorities: 'own', limit: 2.1, count: 300 },
  { operation: 'discovery', connection: 'changing', authorities: 'own', limit: 2.1, count: 300 },
  { operation: 'discovery', connection: 'new', authorities: 'own', limit: 1.13, count: 60 },
  { operation: 'discovery', connection: 'new', authorities: 'system', limit: 1.13, count: 20 },
  { operation: 'discovery', connection: 'cold', authorities: 'own', limit: 1.05, count: 1 },
  { operation: 'discovery', connection: 'cold', authorities: 'system', limit: 1.05, count: 1 },
  { operation: 'sign-in', connection: 'kept', authorities: 'own', limit: 1.35, count: 300 },
  { operation: 'sign-in', connection: 'changing', authorities: 'own', limit: 1.35, count: 300 },
  { operation: 'token-refresh', connection: 'kept', authorities: 'own', limit: 1.35, count: 300 },
  {
    operation: 'token-refresh',
    connection: 'changing',
    authorities: 'own',
    limit: 1.35,
    count: 300,
  },
  { operation: 'profile', connection: 'kept', authorities: 'own', limit: 1.35, count: 300 },
  { operation: 'sample-metadata', connection: 'kept', authorities: 'own', limit: 1.3, count: 300 },
  { operation: 'queue-add', items: 10, limit: 1.2, count: 1000 },
  { operation: 'queue-add', items: 1000, limit: 2.0, count: 300 },
  { operation: 'queue-add', items: 10000, limit: 2.5, count: 50 },
];

export const nameOf = ({ operation, connection, authorities, items }) =>
  items === undefined
    ? `${operation}, ${connection}, ${authorities}`
    : `${operation}, ${items} items`;

// False for a row of the queue.
export const isOperation = ({ items }) => items === undefined;
