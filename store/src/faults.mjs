// Faults that tests add over the control port. They change how a response is sent. The operation
// has already run, as when the network fails on the way back.

const isCount = (value) => Number.isInteger(value) && value >= 0;
const isPositive = (value) => Number.isInteger(value) && value > 0;
const isText = (value) => typeof value === 'string';
const isFlag = (value) => typeof value === 'boolean';
const isObject = (value) => typeof value === 'object' && value !== null && !Array.isArray(value);
const isHeaderValue = (value) =>
  value === null || isText(value) || (Array.isArray(value) && value.every(isText));

const members = {
  operation: { check: isText, expected: 'the name of a root field, or "*" for every request' },
  times: { check: isPositive, expected: 'an integer above 0' },
  delayMilliseconds: { check: isCount, expected: 'an integer, 0 or above' },
  status: {
    check: (value) => Number.isInteger(value) && value >= 200 && value <= 599,
    expected: 'a status from 200 to 599',
  },
  headers: {
    check: (value) => isObject(value) && Object.values(value).every(isHeaderValue),
    expected: 'an object whose values are texts, lists of texts, or null to omit a header',
  },
  body: { check: isText, expected: 'a text' },
  gzip: { check: isFlag, expected: 'true or false' },
  drip: {
    check: (value) =>
      isObject(value) && isPositive(value.bytes) && isCount(value.intervalMilliseconds),
    expected: '{"bytes": n, "intervalMilliseconds": n}',
  },
  cutAfterBytes: { check: isCount, expected: 'an integer, 0 or above' },
  endless: { check: isFlag, expected: 'true or false' },
  drop: { check: isFlag, expected: 'true or false' },
};

// Checks a fault that a test has sent; throws an Error that names the first invalid member.
export function checkFault(value) {
  if (!isObject(value)) throw new Error('a fault must be an object');
  for (const [name, content] of Object.entries(value)) {
    const member = members[name];
    const known = Object.keys(members).join(', ');
    if (!member) throw new Error(`unknown member "${name}"; use ${known}`);
    if (!member.check(content)) throw new Error(`"${name}" must be ${member.expected}`);
  }
  return { operation: '*', ...value };
}

// The faults that wait for a request, in the order in which they were added.
export class FaultList {
  #faults = [];

  add(fault) {
    this.#faults.push({ ...fault });
  }

  // Clears the faults of one operation, or all faults when no operation is named.
  clear(operation) {
    this.#faults = operation ? this.#faults.filter((fault) => fault.operation !== operation) : [];
  }

  list() {
    return this.#faults.map((fault) => ({ ...fault }));
  }

  // Returns the first fault for an operation (null: unknown) and counts it as used. Returns an
  // empty object if there is no such fault.
  take(operation) {
    const index = this.#faults.findIndex((fault) => ['*', operation].includes(fault.operation));
    if (index === -1) return {};
    const fault = this.#faults[index];
    if (fault.times !== undefined) {
      fault.times -= 1;
      if (fault.times === 0) this.#faults.splice(index, 1);
    }
    return fault;
  }
}

function withHeaders(headers, changes) {
  const changed = Object.keys(changes).map((name) => name.toLowerCase());
  const kept = headers.filter(([name]) => !changed.includes(name.toLowerCase()));
  const added = Object.entries(changes).flatMap(([name, value]) =>
    [value]
      .flat()
      .filter((item) => item !== null)
      .map((item) => [name, item]),
  );
  return [...kept, ...added];
}

// The response, with the status, headers and body of the fault.
export function applyFault(answer, fault) {
  return {
    ...answer,
    status: fault.status ?? answer.status,
    headers: withHeaders(answer.headers, fault.headers ?? {}),
    body: fault.body ?? answer.body,
  };
}
