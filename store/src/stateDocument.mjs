// A small JSON document in memory and on disk. A change is on disk before it counts: when it cannot
// be written, the document stays as it was and the error reaches the caller.
import { existsSync, readFileSync } from 'node:fs';

import { replaceFile } from './stateFile.mjs';

function read(path) {
  try {
    return JSON.parse(readFileSync(path, 'utf8'));
  } catch (error) {
    throw new Error(`${path} cannot be read (${error.message}); mend or remove it`);
  }
}

export class StateDocument {
  #path;
  #value;

  // `empty` is the document as long as there is no file.
  constructor(path, empty) {
    this.#path = path;
    this.#value = existsSync(path) ? read(path) : empty;
  }

  // The document as it is now; not to be changed in place.
  get value() {
    return this.#value;
  }

  // Merges the members that `change(value)` returns into the document.
  update(change) {
    const next = { ...this.#value, ...change(this.#value) };
    replaceFile(this.#path, `${JSON.stringify(next, null, 1)}\n`);
    this.#value = next;
  }
}
