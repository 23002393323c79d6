// Faults that tests arrange over the control port. They change how an answer is sent; the operation
// itself has run before, as when a network fails on the way back.

const isCount = (value) => Number.isInteger(value) && value >= 0;
const isPositive = (value) => Number.isInteger(value) && value > 0;
const isText = (value) => typeof value === 'string';
const isFlag = (value) => typeof value === 'boolean';
const isObject = (value) => typeof value === 'object' && value !== null && !Array.isArray(value);
const isHeaderValue = (value) =>
  value === null || isText(value) || (Array.isArray(value) && value.every(isText));

const members = {
  operation: { check: isText, wants: 'the name of a root field, or "*" for every request' },
  times: { check: isPositive, wants: 'a whole number above 0' },
  delayMilliseconds: { check: isCount, wants: 'a whole number' },
  status: {
    check: (value) => Number.isInteger(value) && value >= 200 && value <= 599,
    wants: 'a status from 200 to 599',
  },
  headers: {
    check: (value) => isObject(value) && Object.values(value).every(isHeaderValue),
    wants: 'an object of texts, lists of texts, or null to leave a header out',
  },
  body: { check: isText, wants: 'a text' },
  gzip: { check: isFlag, wants: 'true or false' },
  drip: {
    check: (value) =>
      isObject(value) && isPositive(value.bytes) && isCount(value.intervalMilliseconds),
    wants: '{"bytes": n, "intervalMilliseconds": n}',
  },
  cutAfterBytes: { check: isCount, wants: 'a whole number' },
  endless: { check: isFlag, wants: 'true or false' },
  drop: { check: isFlag, wants: 'true or false' },
};

// A fault as a test sent it; throws an Error that names the first wrong member.
export function checkFault(value) {
  if (!isObject(value)) throw new Error('a fault must be an object');
  for (const [name, content] of Object.entries(value)) {
    const member = members[name];
    const known = Object.keys(members).join(', ');
    if (!member) throw new Error(`unknown member "${name}"; use ${known}`);
    if (!member.check(content)) throw new Error(`"${name}" must be ${member.wants}`);
  }
  return { operation: '*', ...value };
}

// The faults that wait for their request, in the order in which they were added.
export class FaultList {
  #faults = [];

  add(fault) {
    this.#faults.push({ ...fault });
  }

  // Clears the faults of one operation, or all of them when none is named.
  clear(operation) {
    this.#faults = operation ? this.#faults.filter((fault) => fault.operation !== operation) : [];
  }

  list() {
    return this.#faults.map((fault) => ({ ...fault }));
  }

  // The first fault that fits an operation (null: unknown), counted as used; an empty one if none.
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

// The answer with the fault's status, headers and body in place of its own.
export function applyFault(answer, fault) {
  return {
    ...answer,
    status: fault.status ?? answer.status,
    headers: withHeaders(answer.headers, fault.headers ?? {}),
    body: fault.body ?? answer.body,
  };
}
