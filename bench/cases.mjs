// The compared cases. Each row names the operation (a row of both programs, with a file of that
// name in answers/), the connection, the CA certificates (`authorities`), and the target: the ratio
// of the time with the library to the time of the bare program.
//
//   connection   kept: one for all operations; changing: as kept, but each response differs from the
//                one before, so that the stored data changes; new: the server closes it after each
//                response; cold: one operation in a new process, measured from its start
//   authorities  own: a file with only the CA certificate of the run; system: the file of the machine
//                with that certificate appended
//   count        operations per process
//
// Rows with `items` add to a queue of samples with this many items, without a server.

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

// False for a row of the sample queue.
export const isOperation = ({ items }) => items === undefined;
